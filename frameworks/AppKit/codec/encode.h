#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// Implement Codec::encode and Codec::encodeResized.
std::vector<unsigned char> encode(const Picture& picture, Format format, double quality);
std::vector<unsigned char> encodeResized(const Picture& picture, std::uint32_t width, std::uint32_t height,
                                         Format format, double quality);

} // namespace appkit
