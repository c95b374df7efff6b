#pragma once

// The kind and size of a picture, by its first bytes and never by a file's name.

#include "host/values/container.h"

#include <cstdint>
#include <optional>

namespace host {

// What a picture's header says. The data after it may still be damaged.
struct PictureHeader {
    StreamType type;    // PNGf, JPEG, GIFf or BMPf
    uint32_t width = 0; // in pixels, as stored: 1 or more
    uint32_t height = 0;

    friend bool operator==(const PictureHeader&, const PictureHeader&) = default;
};

// Whether streams of that type hold pictures.
bool isPictureType(StreamType type) noexcept;

// Returns what the header of a PNG, JPEG, GIF or BMP says; nothing for other bytes, and for those that end
// before the picture's size.
std::optional<PictureHeader> readPictureHeader(const Bytes& bytes) noexcept;

} // namespace host
