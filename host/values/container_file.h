#pragma once

// Files in containers: making the streams for the contents of a file, and finding the stream that is the
// file.

#include "host/values/container.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace host {

// The type of the stream that holds a file as it is, whatever its contents.
inline constexpr StreamType kFileStream = StreamType::of("FILE");

// Returns a container with a picture: streams for its name, its size, and the contents, in this order. A side
// of more than 32767 pixels is given as 32767, the largest number that fits. For contents that are no picture
// returns what fileContainer() does.
Container pictureContainer(std::u16string_view name, Bytes contents);

// Returns a container with a file: streams for its name and its contents.
Container fileContainer(std::u16string_view name, Bytes contents);

// Returns the stream that is the container's file: the one of type kFileStream; else the first whose contents
// are a picture of its type; else the first that is neither the name nor the size. Null when there is none.
const Container::Stream* fileStream(const Container& container) noexcept;

// Returns width and height, in pixels, of the picture in a container: from the picture's data, else from the
// size stream. Nothing when neither has them.
std::optional<std::pair<int64_t, int64_t>> pictureSides(const Container& container) noexcept;

} // namespace host
