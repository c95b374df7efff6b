#pragma once

// Functions on text, which is UTF-16. Every conversion succeeds: ill-formed text becomes U+FFFD. Letter case
// follows Unicode, without the rules of any particular language.

#include <compare>
#include <string>
#include <string_view>

namespace host {

std::string toUtf8(std::u16string_view text);
std::u16string fromUtf8(std::string_view bytes);

// Returns the case-folded text: texts that differ only in letter case have the same. Its length may differ.
std::u16string foldCase(std::u16string_view text);
std::u16string toUpper(std::u16string_view text);
std::u16string toLower(std::u16string_view text);

// Compares by UTF-16 units.
inline std::strong_ordering compareUnits(std::u16string_view left, std::u16string_view right) {
    return left.compare(right) <=> 0;
}

// Returns the position of the first occurrence of [wanted], which is not empty, at or after [position], unit by unit;
// npos when there is none. Like std::u16string_view::find(), and several times as fast in long texts.
size_t findUnits(std::u16string_view text, std::u16string_view wanted, size_t position);

// Returns the position of the first occurrence of [wanted] at or after [position], ignoring case; npos when
// there is none. Characters are compared one by one, so that a match is always as long as [wanted].
size_t findIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position);
// Returns the position of the last occurrence of [wanted] at or before [position], ignoring case; npos when
// there is none.
size_t findLastIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position);

} // namespace host
