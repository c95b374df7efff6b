#pragma once

// The order of texts.

#include <compare>
#include <string_view>

namespace host {

// Compares as a file does that was made in the locale of the formats in use: by the order of its language, so
// that "éclair" comes before "Zebra". Only texts that differ in nothing but letter case are equal.
std::strong_ordering compareTexts(std::u16string_view left, std::u16string_view right);

} // namespace host
