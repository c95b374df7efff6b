#pragma once

// Johab (KS X 1001, annex 3; Windows code page 1361): the one encoding of the interface that ICU has no
// converter for. Hangul is put together of its letters, five bits each; all else is KS X 1001 at other
// places.

#include <string>
#include <string_view>
#include <unicode/ucnv.h>

namespace host {

// Takes the first character, of one byte or two, from bytes that are not empty. What means nothing is U+FFFD.
// [eucKr] is ICU's converter for what is not Hangul: EUC-KR, or what extends it.
char16_t takeJohab(std::string_view& bytes, UConverter& eucKr);

// The bytes of a character; none when Johab lacks it.
std::string johabBytes(char16_t character, UConverter& eucKr);

} // namespace host
