#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace support {

// Returns the bytes of a file; none when it cannot be read.
inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace support
