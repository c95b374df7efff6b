#pragma once

// Conversion between picture files and pixels. The codec is a library of its own, which is loaded when it is
// first needed; its functions are called through the table that codec() returns (codec_loader.h). They throw
// nothing but std::bad_alloc, and are thread-safe.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace appkit {

// The largest pictures that are read, since a few bytes of a file can claim any size. A side fits a signed
// 16-bit number.
inline constexpr std::uint32_t kMaxSide = 32'767;
inline constexpr std::uint32_t kMaxPixels = 64 * 1024 * 1024;

// Pixels, in rows from top to bottom without padding, with the samples of a pixel next to each other. Alpha
// is not premultiplied.
struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    unsigned samplesPerPixel = 0; // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    unsigned bitsPerSample = 8;   // or 16, in the machine's byte order
    std::vector<unsigned char> samples;

    bool hasAlpha() const { return samplesPerPixel % 2 == 0; }
    std::size_t bytesPerPixel() const { return std::size_t{samplesPerPixel} * (bitsPerSample / 8); }
    std::size_t bytesPerRow() const { return width * bytesPerPixel(); }
};

enum class Format { bmp, gif, jpeg, png };

// Whether a picture is rotated as the camera's orientation (EXIF) says.
enum class Orientation { upright, asStored };

// The functions of the codec library.
struct Codec {
    // Returns the picture in a file, the first frame of several; nothing when the file has no known format,
    // is damaged or incomplete, or exceeds the limits above.
    std::optional<Picture> (*decode)(std::span<const unsigned char> file, Orientation orientation);

    // Returns the picture as a file; [quality], 0 to 1, is for JPEG. Empty when it cannot be written, for
    // instance because it has no pixels, or more than the format or the limits allow.
    std::vector<unsigned char> (*encode)(const Picture& picture, Format format, double quality);

    // Returns the picture resized, as encode() would. Empty for a side of 0 or beyond the limits, too.
    std::vector<unsigned char> (*encodeResized)(const Picture& picture, std::uint32_t width,
                                                std::uint32_t height, Format format, double quality);
};

// The symbol that the codec library exports.
extern "C" const Codec velocardPictureCodec;
inline constexpr const char* kCodecSymbol = "velocardPictureCodec";
inline constexpr const char* kCodecLibrary = "libAppKitCodec.so";

} // namespace appkit
