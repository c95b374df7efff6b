#include "frameworks/AppKit/codec/bmp.h"

#include <cstddef>
#include <cstdint>

namespace appkit {

namespace {

constexpr std::size_t kHeaderSize = 14;
constexpr std::size_t kHeight = 22;
constexpr std::size_t kCompression = 30;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::uint32_t kMasks = 3;
constexpr std::uint32_t kMasksWithAlpha = 6;

std::uint32_t number(std::span<const unsigned char> bytes, std::size_t at) {
    return bytes[at] | bytes[at + 1] << 8U | bytes[at + 2] << 16U |
           static_cast<std::uint32_t>(bytes[at + 3]) << 24U;
}

} // namespace

std::optional<std::vector<unsigned char>> upsideDown(std::span<const unsigned char> file) {
    if (file.size() < kHeaderSize + kInfoHeaderSize || number(file, kHeaderSize) < kInfoHeaderSize) {
        return std::nullopt;
    }
    const std::uint32_t height = number(file, kHeight);
    const std::uint32_t compression = number(file, kCompression);
    if (height <= INT32_MAX || (compression != kMasks && compression != kMasksWithAlpha)) {
        return std::nullopt;
    }
    std::vector<unsigned char> copy(file.begin(), file.end());
    for (unsigned i = 0; i < 4; ++i) {
        copy[kHeight + i] = static_cast<unsigned char>(-height >> 8 * i);
    }
    return copy;
}

} // namespace appkit
