#pragma once

// Files inside containers: how the contents of a file become streams, and which stream is the file again.

#include "host/values/container.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace host {

// The stream of a file that is kept as it is, whatever it holds.
inline constexpr StreamType kFileStream = StreamType::of("FILE");

// A container with a picture: its name, its size, then the stream of its kind. A side of more than 32767
// pixels is given as 32767, the largest that fits. Contents that are no picture are kept as a file.
Container pictureContainer(std::u16string_view name, Bytes contents);

// A container with a file: its name and its contents.
Container fileContainer(std::u16string_view name, Bytes contents);

// The stream that is the container's file: the one of a file kept as it is; else the first whose content is
// the picture that its type says; else the first that is neither the name nor the size. Null when there is
// none.
const Container::Stream* fileStream(const Container& container) noexcept;

// Width and height of the picture in a container: as its data say, else as its size says. Nothing when
// neither does.
std::optional<std::pair<int64_t, int64_t>> pictureSides(const Container& container) noexcept;

} // namespace host
