#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// Implements Codec::decode.
std::optional<Picture> decode(std::span<const unsigned char> file, Orientation orientation);

} // namespace appkit
