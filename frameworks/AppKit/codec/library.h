#pragma once

// GraphicsMagick, set up for pictures that come from anywhere: the codec is chosen here, never by a file's
// name; no disk, no threads, no signal handlers, no picture beyond the limits.

#include "frameworks/AppKit/codec/codec.h"

#include <magick/api.h>
#include <memory>

namespace appkit {

// Sets the library up, once in a process; call it before anything else of the library.
void startLibrary();

// The library's own name of a format.
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

// Where the library reports what went wrong; it prints nothing.
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

// Options for reading or writing this format and no other.
ImageInfoHolder optionsFor(Format format);

} // namespace appkit
