#pragma once

// Text is UTF-16. Every conversion succeeds: what is malformed becomes U+FFFD. Case follows Unicode, for no
// language in particular.

#include <compare>
#include <string>
#include <string_view>

namespace host {

std::string toUtf8(std::u16string_view text);
std::u16string fromUtf8(std::string_view bytes);

// The form in which texts that differ in letter case alone are the same. It may have another length.
std::u16string foldCase(std::u16string_view text);
std::u16string toUpper(std::u16string_view text);
std::u16string toLower(std::u16string_view text);

// Order by the folded texts, by code point.
std::strong_ordering compareIgnoringCase(std::u16string_view left, std::u16string_view right);

// Order by UTF-16 units.
inline std::strong_ordering compareUnits(std::u16string_view left, std::u16string_view right) {
    return left.compare(right) <=> 0;
}

// Where [wanted] next starts at or after [position], ignoring case; npos when nowhere. Characters are
// compared one by one, so that a match is as long as what is wanted.
size_t findIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position);
// Where [wanted] last starts at or before [position], ignoring case; npos when nowhere.
size_t findLastIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position);

} // namespace host
