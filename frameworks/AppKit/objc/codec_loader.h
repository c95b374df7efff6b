#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// Returns the codec, and loads it when first called; null when it cannot be loaded, which is reported once on
// standard error. Thread-safe.
const Codec* codec();

} // namespace appkit
