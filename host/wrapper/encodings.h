#pragma once

// Text in bytes: the encodings of the interface, which ICU converts.

#include "FMWrapper/FMXExtern.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// What bytes spell; bytes that mean nothing become U+FFFD. Throws std::invalid_argument for a number that no
// encoding has.
std::u16string decoded(std::string_view bytes, fmx::int32 encoding);

// A text as bytes, as many whole characters as fit into a capacity; characters that the encoding lacks become
// "?". Throws std::invalid_argument for a number that no encoding has.
std::string encoded(std::u16string_view text, fmx::int32 encoding, size_t capacity);

} // namespace host
