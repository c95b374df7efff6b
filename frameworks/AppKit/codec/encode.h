#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// Implements Codec::encode.
std::vector<unsigned char> encode(const Picture& picture, Format format, double quality);

} // namespace appkit
