#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// As Codec::encode says.
std::vector<unsigned char> encode(const Picture& picture, Format format, double quality);

} // namespace appkit
