#pragma once

#include <optional>
#include <span>
#include <vector>

namespace appkit {

// BMP files may hold their rows from the top, as a negative height says; macOS writes its own that way. The
// image library refuses that where the samples have masks. For such a file this answers a copy with the
// height made positive, which shows the picture upside down; nothing for any other.
std::optional<std::vector<unsigned char>> upsideDown(std::span<const unsigned char> file);

} // namespace appkit
