#include "frameworks/AppKit/codec/encode.h"

#include "frameworks/AppKit/codec/library.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace appkit {

namespace {

constexpr unsigned kOpaque = 0xffff;

// A pixel with 16 bits a sample, whatever the picture has.
struct Pixel {
    unsigned red, green, blue, alpha;
};

template <typename Sample>
Pixel pixelAt(const unsigned char* from, unsigned samplesPerPixel) {
    Sample samples[4];
    std::memcpy(samples, from, samplesPerPixel * sizeof(Sample));
    const auto widened = [&](unsigned i) -> unsigned {
        return sizeof(Sample) == 1 ? samples[i] * 257U : samples[i];
    };
    const bool grey = samplesPerPixel < 3;
    const unsigned alpha = samplesPerPixel % 2 == 0 ? widened(samplesPerPixel - 1) : kOpaque;
    return {widened(0), widened(grey ? 0 : 1), widened(grey ? 0 : 2), alpha};
}

// Changes a pixel for a format without transparency, or with only full transparency.
void fit(Pixel& pixel, Format format) {
    if (pixel.alpha == kOpaque) {
        return;
    }
    if (format == Format::gif) {
        if (pixel.alpha * 2 < kOpaque) {
            pixel = {0, 0, 0, 0};
        } else {
            pixel.alpha = kOpaque;
        }
    } else if (format == Format::jpeg) {
        const auto onWhite = [&](unsigned sample) {
            return kOpaque - (kOpaque - sample) * pixel.alpha / kOpaque;
        };
        pixel = {onWhite(pixel.red), onWhite(pixel.green), onWhite(pixel.blue), kOpaque};
    }
}

// Whether colours are to be dithered when there are too many for a palette. The library walks along a Hilbert curve then,
// through all of the square that holds the picture: for seconds, when that is a column of 32,767 pixels.
bool isDithered(std::uint32_t width, std::uint32_t height) {
    const std::uint64_t side = std::bit_ceil(std::max(width, height));
    return side * side <= 16 * std::uint64_t{width} * height;
}

ImageHolder imageFrom(const Picture& picture, Format format, const ImageInfo* info) {
    ImageHolder image(AllocateImage(info));
    image->columns = picture.width;
    image->rows = picture.height;
    image->depth = format == Format::png ? picture.bitsPerSample : 8;
    image->storage_class = DirectClass;
    const auto pixelFrom = picture.bitsPerSample == 8 ? pixelAt<std::uint8_t> : pixelAt<std::uint16_t>;

    const unsigned char* from = picture.samples.data();
    bool transparent = false;
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        PixelPacket* row = SetImagePixels(image.get(), 0, static_cast<long>(y), picture.width, 1);
        if (row == nullptr) {
            return nullptr;
        }
        for (std::uint32_t x = 0; x < picture.width; ++x, from += picture.bytesPerPixel()) {
            Pixel pixel = pixelFrom(from, picture.samplesPerPixel);
            fit(pixel, format);
            transparent = transparent || pixel.alpha != kOpaque;
            row[x].red = ScaleShortToQuantum(pixel.red);
            row[x].green = ScaleShortToQuantum(pixel.green);
            row[x].blue = ScaleShortToQuantum(pixel.blue);
            row[x].opacity = ScaleShortToQuantum(kOpaque - pixel.alpha);
        }
        if (SyncImagePixels(image.get()) == MagickFail) {
            return nullptr;
        }
    }
    // PNG and BMP keep an alpha channel, even if all pixels are opaque.
    const bool keepsAlpha = format == Format::png || format == Format::bmp;
    image->matte = keepsAlpha ? picture.hasAlpha() : transparent;
    return image;
}

} // namespace

std::vector<unsigned char> encode(const Picture& picture, Format format, double quality) {
    return encodeResized(picture, picture.width, picture.height, format, quality);
}

std::vector<unsigned char> encodeResized(const Picture& picture, std::uint32_t width, std::uint32_t height,
                                         Format format, double quality) {
    if (picture.width == 0 || picture.height == 0 || width == 0 || height == 0) {
        return {};
    }
    const bool isResized = width != picture.width || height != picture.height;
    if (isResized && (width > kMaxSide || height > kMaxSide || std::uint64_t{width} * height > kMaxPixels)) {
        return {};
    }
    startLibrary();
    const ImageInfoHolder info = optionsFor(format);
    if (format == Format::jpeg) {
        info->quality =
            static_cast<unsigned long>(std::lround(100 * (quality > 0 ? std::min(quality, 1.0) : 0)));
    }
    info->dither = isDithered(width, height) ? MagickTrue : MagickFalse;
    // Otherwise the library would write grey as RGB. Not for BMP, where this would make a palette.
    if (picture.samplesPerPixel < 3 && format != Format::bmp) {
        info->type = picture.hasAlpha() && format == Format::png ? GrayscaleMatteType : GrayscaleType;
    }
    ImageHolder image = imageFrom(picture, format, info.get());
    Report report;
    if (image && isResized) {
        image.reset(ResizeImage(image.get(), width, height, LanczosFilter, 1, report.get()));
    }
    if (!image) {
        return {};
    }
    std::memcpy(image->magick, info->magick, sizeof image->magick);
    std::memcpy(image->filename, info->filename, sizeof image->filename);
    std::size_t length = 0;
    const BlobHolder blob(ImageToBlob(info.get(), image.get(), &length, report.get()));
    if (!blob || report.failed()) {
        return {};
    }
    image.reset();
    const auto* bytes = static_cast<const unsigned char*>(blob.get());
    return {bytes, bytes + length};
}

} // namespace appkit
