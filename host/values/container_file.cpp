#include "host/values/container_file.h"

#include "host/values/picture.h"

#include <algorithm>
#include <limits>

namespace host {

namespace {

int16_t side(uint32_t pixels) {
    constexpr uint32_t kLargest = std::numeric_limits<int16_t>::max();
    return static_cast<int16_t>(std::min(pixels, kLargest));
}

} // namespace

Container pictureContainer(std::u16string_view name, Bytes contents) {
    const auto picture = readPictureHeader(contents);
    if (!picture) {
        return fileContainer(name, std::move(contents));
    }
    Container result;
    result.setFileNames(name);
    result.setPictureSize(side(picture->width), side(picture->height));
    result.set(picture->type, std::move(contents));
    return result;
}

Container fileContainer(std::u16string_view name, Bytes contents) {
    Container result;
    result.setFileNames(name);
    result.set(kFileStream, std::move(contents));
    return result;
}

const Container::Stream* fileStream(const Container& container) noexcept {
    const Container::Stream* picture = nullptr;
    const Container::Stream* other = nullptr;
    for (const Container::Stream& stream : container) {
        if (stream.type() == kFileStream) {
            return &stream;
        }
        if (stream.type() == Container::kFileNames || stream.type() == Container::kSize) {
            continue;
        }
        const auto header = picture == nullptr && isPictureType(stream.type())
                                ? readPictureHeader(stream.bytes())
                                : std::nullopt;
        if (header && header->type == stream.type()) {
            picture = &stream;
        }
        other = other == nullptr ? &stream : other;
    }
    return picture != nullptr ? picture : other;
}

std::optional<std::pair<int64_t, int64_t>> pictureSides(const Container& container) noexcept {
    const Container::Stream* stream = fileStream(container);
    if (const auto header = stream != nullptr ? readPictureHeader(stream->bytes()) : std::nullopt) {
        return std::pair<int64_t, int64_t>(header->width, header->height);
    }
    const auto size = container.pictureSize();
    return size ? std::optional(std::pair<int64_t, int64_t>(*size)) : std::nullopt;
}

} // namespace host
