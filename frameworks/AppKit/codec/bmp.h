#pragma once

#include <optional>
#include <span>
#include <vector>

namespace appkit {

// Returns a copy of a BMP file with its height made positive, which turns the picture upside down, if the
// image library could not read the file otherwise; nothing for any other file. A negative height says that
// the rows are stored from top to bottom, as macOS does; the library refuses it for pictures with channel
// masks.
std::optional<std::vector<unsigned char>> upsideDown(std::span<const unsigned char> file);

} // namespace appkit
