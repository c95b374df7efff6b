#include "host/values/picture.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace host {

namespace {

// Reads numbers of either byte order. Bytes after the end read as 0, so that a header cut short has no size.
class Header {
  public:
    explicit Header(const Bytes& bytes) : bytes_(bytes) {}

    size_t size() const { return bytes_.size(); }
    uint32_t byte(size_t at) const { return at < bytes_.size() ? bytes_[at] : 0; }
    uint32_t low16(size_t at) const { return byte(at) | byte(at + 1) << 8; }
    uint32_t low32(size_t at) const { return low16(at) | low16(at + 2) << 16; }
    uint32_t high16(size_t at) const { return byte(at) << 8 | byte(at + 1); }
    uint32_t high32(size_t at) const { return high16(at) << 16 | high16(at + 2); }
    bool hasAt(size_t at, std::string_view wanted) const {
        return at + wanted.size() <= bytes_.size() &&
               std::equal(wanted.begin(), wanted.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at),
                          [](char c, unsigned char byte) { return static_cast<unsigned char>(c) == byte; });
    }

  private:
    const Bytes& bytes_;
};

struct Size {
    uint32_t width = 0; // 0: not this kind of picture
    uint32_t height = 0;
};

Size readPng(const Header& in) {
    return in.hasAt(0, "\x89PNG\r\n\x1A\n") && in.hasAt(12, "IHDR") ? Size{in.high32(16), in.high32(20)}
                                                                    : Size{};
}

Size readGif(const Header& in) {
    return in.hasAt(0, "GIF87a") || in.hasAt(0, "GIF89a") ? Size{in.low16(6), in.low16(8)} : Size{};
}

// The file's header is followed by one of a few known lengths. Only the shortest has sides of 16 bits. A
// negative height says that the rows are stored from top to bottom.
Size readBmp(const Header& in) {
    constexpr uint32_t kOldest = 12;
    constexpr uint32_t kLengths[] = {kOldest, 40, 52, 56, 64, 108, 124};
    const uint32_t length = in.low32(14);
    if (!in.hasAt(0, "BM") ||
        std::find(std::begin(kLengths), std::end(kLengths), length) == std::end(kLengths)) {
        return {};
    }
    if (length == kOldest) {
        return {in.low16(18), in.low16(20)};
    }
    const uint32_t height = in.low32(22);
    const bool isTopDown = height > 0x80000000U;
    return {in.low32(18), isTopDown ? 0U - height : height};
}

// Walks from segment to segment to the start of the frame, which has the size.
Size readJpeg(const Header& in) {
    if (!in.hasAt(0, "\xFF\xD8\xFF")) {
        return {};
    }
    size_t at = 2;
    while (at + 3 < in.size() && in.byte(at) == 0xFF) {
        const uint32_t marker = in.byte(at + 1);
        if (marker == 0xFF) {
            ++at; // a fill byte before a marker
        } else if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
            return {in.high16(at + 7), in.high16(at + 5)};
        } else if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8)) {
            at += 2; // markers without a length
        } else {
            at += 2 + std::max<size_t>(in.high16(at + 2), 2);
        }
    }
    return {};
}

struct Kind {
    StreamType type;
    Size (*read)(const Header&);
};

constexpr Kind kKinds[] = {
    {StreamType::of("PNGf"), readPng},
    {StreamType::of("JPEG"), readJpeg},
    {StreamType::of("GIFf"), readGif},
    {StreamType::of("BMPf"), readBmp},
};

} // namespace

bool isPictureType(StreamType type) noexcept {
    return std::any_of(std::begin(kKinds), std::end(kKinds),
                       [type](const Kind& kind) { return kind.type == type; });
}

std::optional<PictureHeader> readPictureHeader(const Bytes& bytes) noexcept {
    const Header header(bytes);
    for (const Kind& kind : kKinds) {
        const Size size = kind.read(header);
        if (size.width > 0 && size.height > 0) {
            return PictureHeader{kind.type, size.width, size.height};
        }
    }
    return std::nullopt;
}

} // namespace host
