#include "host/values/container.h"

#include <algorithm>
#include <numeric>

namespace host {

uint32_t StreamType::code() const noexcept {
    uint32_t code = 0;
    for (const char c : characters) {
        code = code << 8 | static_cast<unsigned char>(c);
    }
    return code;
}

void StreamType::setCode(uint32_t code) noexcept {
    for (size_t i = 0; i < characters.size(); ++i) {
        characters[i] = static_cast<char>(code >> (24 - 8 * i) & 0xFF);
    }
}

std::strong_ordering operator<=>(const Container::Stream& left, const Container::Stream& right) noexcept {
    const auto types = left.type_ <=> right.type_;
    return types != 0 || left.bytes_ == right.bytes_ ? types : *left.bytes_ <=> *right.bytes_;
}

size_t Container::totalSize() const noexcept {
    return std::accumulate(streams_.begin(), streams_.end(), size_t{0},
                           [](size_t sum, const Stream& stream) { return sum + stream.bytes().size(); });
}

std::optional<size_t> Container::find(StreamType type) const noexcept {
    const auto found = std::find_if(streams_.begin(), streams_.end(),
                                    [type](const Stream& stream) { return stream.type() == type; });
    return found == streams_.end() ? std::nullopt
                                   : std::optional(static_cast<size_t>(found - streams_.begin()));
}

void Container::set(StreamType type, Bytes bytes) {
    if (const auto index = find(type)) {
        streams_[*index] = Stream(type, std::move(bytes));
    } else {
        streams_.emplace_back(type, std::move(bytes));
    }
}

bool Container::remove(StreamType type) {
    return std::erase_if(streams_, [type](const Stream& stream) { return stream.type() == type; }) > 0;
}

std::optional<std::u16string> Container::fileNames() const {
    const auto index = find(kFileNames);
    if (!index) {
        return std::nullopt;
    }
    const Bytes& bytes = streams_[*index].bytes();
    std::u16string names;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        names += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    }
    return names;
}

void Container::setFileNames(std::u16string_view names) {
    Bytes bytes;
    bytes.reserve(2 * names.size());
    for (const char16_t unit : names) {
        bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
        bytes.push_back(static_cast<unsigned char>(unit >> 8));
    }
    set(kFileNames, std::move(bytes));
}

std::optional<std::pair<int16_t, int16_t>> Container::pictureSize() const {
    const auto index = find(kSize);
    if (!index || streams_[*index].bytes().size() != 4) {
        return std::nullopt;
    }
    const auto number = [&bytes = streams_[*index].bytes()](size_t i) {
        return static_cast<int16_t>(bytes[i] << 8 | bytes[i + 1]);
    };
    return std::pair(number(0), number(2));
}

void Container::setPictureSize(int16_t width, int16_t height) {
    const auto high = [](int16_t n) { return static_cast<unsigned char>(static_cast<uint16_t>(n) >> 8); };
    const auto low = [](int16_t n) { return static_cast<unsigned char>(static_cast<uint16_t>(n) & 0xFF); };
    set(kSize, {high(width), low(width), high(height), low(height)});
}

} // namespace host
