#include "host/calc/thumbnail.h"

#include "frameworks/AppKit/codec/codec.h"
#include "host/modules/installed_library.h"
#include "host/values/picture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace host {

namespace {

constexpr double kQuality = .9; // of a JPEG, 0 to 1
constexpr StreamType kJpeg = StreamType::of("JPEG");

// Returns the codec; null when its library is not there.
const appkit::Codec* codec() {
    static const appkit::Codec* const kLoaded = []() -> const appkit::Codec* {
        try {
            return static_cast<const appkit::Codec*>(
                libraryObject(appkit::kCodecLibrary, appkit::kCodecSymbol));
        } catch (const std::runtime_error&) {
            return nullptr;
        }
    }();
    return kLoaded;
}

bool isJpeg(const Bytes& file) {
    const auto header = readPictureHeader(file);
    return header && header->type == kJpeg;
}

} // namespace

std::optional<Bytes> thumbnail(const Bytes& file, size_t width, size_t height) {
    if (width == 0 || height == 0 || !readPictureHeader(file) || codec() == nullptr) {
        return std::nullopt;
    }
    const auto picture = codec()->decode(file, appkit::Orientation::upright);
    if (!picture || picture->width == 0 || picture->height == 0) {
        return std::nullopt;
    }
    const double scale =
        std::min(static_cast<double>(width) / picture->width, static_cast<double>(height) / picture->height);
    if (scale >= 1) {
        return file;
    }
    const auto side = [scale](uint32_t pixels) {
        return static_cast<uint32_t>(std::max(1L, std::lround(pixels * scale)));
    };
    Bytes small = codec()->encodeResized(*picture, side(picture->width), side(picture->height),
                                         isJpeg(file) ? appkit::Format::jpeg : appkit::Format::png, kQuality);
    return small.empty() ? std::nullopt : std::optional(std::move(small));
}

std::u16string thumbnailName(std::u16string_view name, const Bytes& file) {
    const auto header = readPictureHeader(file);
    const size_t point = name.rfind(u'.');
    if (name.empty() || point == std::u16string_view::npos || !header ||
        header->type != StreamType::of("PNGf")) {
        return std::u16string(name);
    }
    return std::u16string(name.substr(0, point)) + u".png";
}

} // namespace host
