#pragma once

// GraphicsMagick, set up for untrusted pictures: the format is chosen by this code, never by a file's name;
// it uses no disk, threads or signal handlers, and reads no picture beyond the limits.

#include "frameworks/AppKit/codec/codec.h"

#include <magick/api.h>
#include <memory>

namespace appkit {

// Initialises the library, once in a process; call it before any other function of the library. Thread-safe.
void startLibrary();

// Returns the library's name for a format.
const char* libraryName(Format format);

struct ImageDeleter {
    void operator()(Image* image) const { DestroyImageList(image); }
};
struct ImageInfoDeleter {
    void operator()(ImageInfo* info) const { DestroyImageInfo(info); }
};
struct BlobDeleter {
    void operator()(void* blob) const { MagickFree(blob); }
};
using ImageHolder = std::unique_ptr<Image, ImageDeleter>;
using ImageInfoHolder = std::unique_ptr<ImageInfo, ImageInfoDeleter>;
using BlobHolder = std::unique_ptr<void, BlobDeleter>;

// Collects the errors that the library reports, so that it prints nothing.
class Report {
  public:
    Report() { GetExceptionInfo(&info_); }
    ~Report() { DestroyExceptionInfo(&info_); }
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    ExceptionInfo* get() { return &info_; }
    bool failed() const { return info_.severity >= ErrorException; }
    const char* reason() const { return info_.reason ? info_.reason : ""; }

  private:
    ExceptionInfo info_;
};

// Returns options for reading or writing a format, and no other.
ImageInfoHolder optionsFor(Format format);

} // namespace appkit
