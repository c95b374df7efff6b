#pragma once

// Picture files to pixels and back. The codec is a library of its own that is loaded when it is needed: what
// is called here goes through the table that codec_loader.h answers. Nothing throws but std::bad_alloc; any
// thread may call.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace appkit {

// Beyond this nothing is read: a few bytes of a file can claim any size. The widest fits a signed 16-bit
// number.
inline constexpr std::uint32_t kMaxSide = 32'767;
inline constexpr std::uint32_t kMaxPixels = 64 * 1024 * 1024;

// Pixels: rows from the top without padding, the samples of a pixel next to each other; alpha is not
// multiplied in.
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

// Whether the side that a camera says is up is turned up.
enum class Orientation { upright, asStored };

struct Codec {
    // The picture in a file, the first frame of several; nothing when the file is none that the codec knows,
    // is damaged, stops short or exceeds the limits above.
    std::optional<Picture> (*decode)(std::span<const unsigned char> file, Orientation orientation);

    // The picture as a file; [quality], 0 to 1, is for JPEG. Empty when it cannot be written, as with no
    // pixels or with more of them than the format or the limits allow.
    std::vector<unsigned char> (*encode)(const Picture& picture, Format format, double quality);
};

// What the codec library exports, under this name.
extern "C" const Codec velocardPictureCodec;
inline constexpr const char* kCodecSymbol = "velocardPictureCodec";
inline constexpr const char* kCodecLibrary = "libAppKitCodec.so";

} // namespace appkit
