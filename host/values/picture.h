#pragma once

// What kind of picture some bytes are, and how large it is: told by its first bytes, never by a file's name.

#include "host/values/container.h"

#include <cstdint>
#include <optional>

namespace host {

// A picture by its header. Its data may still be damaged.
struct PictureHeader {
    StreamType type;    // PNGf, JPEG, GIFf or BMPf
    uint32_t width = 0; // in pixels, as stored: 1 or more
    uint32_t height = 0;

    friend bool operator==(const PictureHeader&, const PictureHeader&) = default;
};

// Whether streams of that type hold pictures.
bool isPictureType(StreamType type) noexcept;

// Nothing when the bytes are no PNG, JPEG, GIF or BMP, or stop before they say how large the picture is.
std::optional<PictureHeader> readPictureHeader(const Bytes& bytes) noexcept;

} // namespace host
