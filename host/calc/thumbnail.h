#pragma once

// Small forms of pictures.

#include "host/values/container.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// Returns the file of a picture in the largest size that has its proportions and is at most so wide and so
// high, in pixels, and no larger than the picture: a JPEG for a JPEG, else a PNG; the file itself when it fits.
// Nothing when it is no PNG, JPEG, GIF or BMP, is damaged, or a side would be 0, and when the library for
// pictures is not there.
std::optional<Bytes> thumbnail(const Bytes& file, size_t width, size_t height);

// Returns the name for a thumbnail of a file: with the ending of the picture's format.
std::u16string thumbnailName(std::u16string_view name, const Bytes& file);

} // namespace host
