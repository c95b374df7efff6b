#pragma once

#include "host/check/checker.h"

#include <string_view>

namespace fuzz {

// Formats a text as `fmhost format` does; claims that formatting it again changes nothing, and that what can be parsed
// can still be parsed. Checks it as `fmhost check` does.
void formatAndCheck(std::string_view text, host::FileKind kind);

} // namespace fuzz
