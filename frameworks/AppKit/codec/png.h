#pragma once

#include <span>

namespace appkit {

// Whether a PNG file ends inside one of its chunks. Such a file cannot be read; the image library would find that out
// only when it has memory for the whole chunk, which may claim 2 GB.
bool endsInsideChunk(std::span<const unsigned char> file);

} // namespace appkit
