#include "fuzz/support/picture_limit.h"

#include <magick/api.h>

namespace fuzz {

void limitPixels(std::uint64_t pixels) {
    SetMagickResourceLimit(PixelsResource, static_cast<magick_int64_t>(pixels));
}

} // namespace fuzz
