#include "frameworks/AppKit/codec/library.h"

#include <cstdio>
#include <mutex>

namespace appkit {

void startLibrary() {
    static std::once_flag once;
    std::call_once(once, [] {
        Report report;
        InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, report.get());
        SetMagickResourceLimit(WidthResource, kMaxSide);
        SetMagickResourceLimit(HeightResource, kMaxSide);
        SetMagickResourceLimit(PixelsResource, kMaxPixels);
        SetMagickResourceLimit(ThreadsResource, 1);
        SetMagickResourceLimit(DiskResource, 0);
        SetMagickResourceLimit(MapResource, 0);
    });
}

const char* libraryName(Format format) {
    switch (format) {
    case Format::bmp:
        return "BMP";
    case Format::gif:
        return "GIF";
    case Format::jpeg:
        return "JPEG";
    case Format::png:
        return "PNG";
    }
    return "";
}

ImageInfoHolder optionsFor(Format format) {
    ImageInfoHolder info(CloneImageInfo(nullptr));
    const char* name = libraryName(format);
    std::snprintf(info->magick, sizeof info->magick, "%s", name);
    // The prefix keeps the library from guessing the format from the bytes.
    std::snprintf(info->filename, sizeof info->filename, "%s:picture", name);
    return info;
}

} // namespace appkit
