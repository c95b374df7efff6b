#pragma once

#include "frameworks/AppKit/codec/codec.h"

namespace appkit {

// The codec, loaded when it is first asked for; null when it cannot be loaded, which is said once on standard
// error.
const Codec* codec();

} // namespace appkit
