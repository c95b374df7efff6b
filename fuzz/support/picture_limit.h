#pragma once

#include <cstdint>

namespace fuzz {

// Makes the image library refuse pictures of more pixels. Call it when the codec has set its own limits.
void limitPixels(std::uint64_t pixels);

} // namespace fuzz
