#pragma once

// Johab (KS X 1001, annex 3; Windows code page 1361), the one encoding of the interface for which ICU has no
// converter. A Hangul syllable is made up of its letters, five bits each; all other characters are those of
// KS X 1001 under other codes.

#include <string>
#include <string_view>
#include <unicode/ucnv.h>

namespace host {

// Removes the first character, of one byte or two, from [bytes], which must not be empty, and returns it;
// U+FFFD for bytes without a meaning. [eucKr] is ICU's converter for what is not Hangul: EUC-KR, or an
// extension of it.
char16_t takeJohab(std::string_view& bytes, UConverter& eucKr);

// Returns the bytes of a character; none when Johab lacks it.
std::string johabBytes(char16_t character, UConverter& eucKr);

} // namespace host
