#include "tests/plugin/pictures.h"

#include <cstdint>

namespace {

// Appends little-endian numbers.
void append(std::string& bytes, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes.push_back(static_cast<char>(value >> (8 * i)));
    }
}

} // namespace

std::string bmp(int width, int height) {
    const std::uint32_t row = (static_cast<std::uint32_t>(width) * 3 + 3) / 4 * 4;
    const std::uint32_t pixels = row * static_cast<std::uint32_t>(height);
    std::string bytes = "BM";
    append(bytes, 54 + pixels, 4);
    append(bytes, 0, 4);
    append(bytes, 54, 4);
    append(bytes, 40, 4);
    append(bytes, static_cast<std::uint32_t>(width), 4);
    append(bytes, static_cast<std::uint32_t>(height), 4);
    append(bytes, 1, 2);
    append(bytes, 24, 2);
    append(bytes, 0, 4);
    append(bytes, pixels, 4);
    append(bytes, 2835, 4);
    append(bytes, 2835, 4);
    append(bytes, 0, 8);
    return bytes + std::string(pixels, '\x80');
}

NSData* dataOf(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}
