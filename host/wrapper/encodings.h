#pragma once

// Converts text to and from the interface's byte encodings, by means of ICU.

#include "FMWrapper/FMXExtern.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// Returns the text of [bytes]; bytes without a meaning become U+FFFD. Throws std::invalid_argument for a
// number that is no encoding.
std::u16string decoded(std::string_view bytes, fmx::int32 encoding);

// Returns a text as bytes: as many whole characters as fit into [capacity] bytes. Characters that the
// encoding lacks become "?". Throws std::invalid_argument for a number that is no encoding.
std::string encoded(std::u16string_view text, fmx::int32 encoding, size_t capacity);

} // namespace host
