// In this order: the format, reading, the places of the pixels, the samples.

#include "frameworks/AppKit/codec/decode.h"

#include "frameworks/AppKit/codec/bmp.h"
#include "frameworks/AppKit/codec/library.h"
#include "frameworks/AppKit/codec/png.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace appkit {

namespace {

struct Signature {
    std::string_view start;
    Format format;
};
constexpr Signature kSignatures[] = {
    {"\x89PNG\r\n\x1a\n", Format::png},
    {"\xff\xd8\xff", Format::jpeg},
    {"GIF87a", Format::gif},
    {"GIF89a", Format::gif},
    {"BM", Format::bmp},
};

std::optional<Format> formatOf(std::span<const unsigned char> file) {
    const std::string_view bytes(reinterpret_cast<const char*>(file.data()), file.size());
    for (const Signature& signature : kSignatures) {
        if (bytes.starts_with(signature.start)) {
            return signature.format;
        }
    }
    return std::nullopt;
}

// Returns the first frame as the library reads it; null when there is none, or when it is incomplete.
ImageHolder read(std::span<const unsigned char> file, Format format) {
    const ImageInfoHolder info = optionsFor(format);
    info->subimage = 0;
    info->subrange = 1;
    Report report;
    ImageHolder image(BlobToImage(info.get(), file.data(), file.size(), report.get()));
    // For an incomplete JPEG the library only gives a warning, as for damage that the decoder could repair.
    if (!image || report.failed() || std::strstr(report.reason(), "Premature end") != nullptr) {
        return nullptr;
    }
    if (image->colorspace != RGBColorspace && !IsRGBCompatibleColorspace(image->colorspace) &&
        TransformColorspace(image.get(), RGBColorspace) == MagickFail) {
        return nullptr;
    }
    return image;
}

// How stored pixels are mapped to shown ones: moved, mirrored at the diagonal, mirrored at the axes, in this
// order.
struct Placement {
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t width = 0; // of the shown picture
    std::uint32_t height = 0;
    bool turned = false;
    bool mirroredAcross = false;
    bool mirroredDown = false;
};

// Adds one of EXIF's eight orientations to a placement.
void turn(Placement& placement, OrientationType orientation) {
    switch (orientation) {
    case UndefinedOrientation:
    case TopLeftOrientation:
        break;
    case TopRightOrientation:
        placement.mirroredAcross = true;
        break;
    case BottomRightOrientation:
        placement.mirroredAcross = placement.mirroredDown = true;
        break;
    case BottomLeftOrientation:
        placement.mirroredDown = true;
        break;
    case LeftTopOrientation:
        placement.turned = true;
        break;
    case RightTopOrientation:
        placement.turned = placement.mirroredAcross = true;
        break;
    case RightBottomOrientation:
        placement.turned = placement.mirroredAcross = placement.mirroredDown = true;
        break;
    case LeftBottomOrientation:
        placement.turned = placement.mirroredDown = true;
        break;
    }
    if (placement.turned) {
        std::swap(placement.width, placement.height);
    }
}

// Returns the placement of an image; that of a GIF's frame is anywhere on its screen. Nothing when the screen
// exceeds the limits.
std::optional<Placement> placementOf(const Image& image, Format format) {
    std::uint64_t left = 0;
    std::uint64_t top = 0;
    std::uint64_t width = image.columns;
    std::uint64_t height = image.rows;
    if (format == Format::gif) {
        left = static_cast<std::uint64_t>(std::max(image.page.x, 0L));
        top = static_cast<std::uint64_t>(std::max(image.page.y, 0L));
        width = std::max<std::uint64_t>(image.page.width, left + width);
        height = std::max<std::uint64_t>(image.page.height, top + height);
    }
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) {
        return std::nullopt;
    }
    Placement placement;
    placement.left = static_cast<std::uint32_t>(left);
    placement.top = static_cast<std::uint32_t>(top);
    placement.width = static_cast<std::uint32_t>(width);
    placement.height = static_cast<std::uint32_t>(height);
    return placement;
}

template <typename Sample>
void store(const PixelPacket& pixel, unsigned samplesPerPixel, unsigned char* to) {
    const auto sample = [](Quantum quantum) {
        if constexpr (sizeof(Sample) == 1) {
            return static_cast<Sample>(ScaleQuantumToChar(quantum));
        } else {
            return static_cast<Sample>(ScaleQuantumToShort(quantum));
        }
    };
    Sample samples[4] = {sample(pixel.red), sample(pixel.green), sample(pixel.blue)};
    if (samplesPerPixel % 2 == 0) {
        samples[samplesPerPixel - 1] = sample(MaxRGB - pixel.opacity);
    }
    std::memcpy(to, samples, samplesPerPixel * sizeof(Sample));
}

std::optional<Picture> pictureFrom(const Image& image, const Placement& placement) {
    const bool covered = placement.turned
                             ? image.columns == placement.height && image.rows == placement.width
                             : image.columns == placement.width && image.rows == placement.height;
    Picture picture;
    picture.width = placement.width;
    picture.height = placement.height;
    picture.samplesPerPixel = (image.is_grayscale ? 1 : 3) + (image.matte || !covered ? 1 : 0);
    picture.bitsPerSample = image.depth > 8 ? 16 : 8;
    picture.samples.resize(picture.bytesPerRow() * picture.height);
    const auto storePixel = picture.bitsPerSample == 8 ? store<std::uint8_t> : store<std::uint16_t>;
    const bool opaque = !image.matte;

    Report report;
    for (std::uint32_t y = 0; y < image.rows; ++y) {
        const PixelPacket* row =
            AcquireImagePixels(&image, 0, static_cast<long>(y), image.columns, 1, report.get());
        if (row == nullptr) {
            return std::nullopt;
        }
        for (std::uint32_t x = 0; x < image.columns; ++x) {
            std::uint32_t across = x + placement.left;
            std::uint32_t down = y + placement.top;
            if (placement.turned) {
                std::swap(across, down);
            }
            if (placement.mirroredAcross) {
                across = placement.width - 1 - across;
            }
            if (placement.mirroredDown) {
                down = placement.height - 1 - down;
            }
            PixelPacket pixel = row[x];
            if (opaque) {
                pixel.opacity = OpaqueOpacity;
            }
            storePixel(pixel, picture.samplesPerPixel,
                       &picture.samples[down * picture.bytesPerRow() + across * picture.bytesPerPixel()]);
        }
    }
    return picture;
}

} // namespace

std::optional<Picture> decode(std::span<const unsigned char> file, Orientation orientation) {
    const std::optional<Format> format = formatOf(file);
    if (!format || (*format == Format::png && endsInsideChunk(file))) {
        return std::nullopt;
    }
    startLibrary();
    const auto copy = *format == Format::bmp ? upsideDown(file) : std::nullopt;
    const ImageHolder image = read(copy ? *copy : file, *format);
    if (!image) {
        return std::nullopt;
    }
    std::optional<Placement> placement = placementOf(*image, *format);
    if (!placement) {
        return std::nullopt;
    }
    if (copy) {
        turn(*placement, BottomLeftOrientation);
    } else if (orientation == Orientation::upright) {
        turn(*placement, image->orientation);
    }
    return pictureFrom(*image, *placement);
}

} // namespace appkit
