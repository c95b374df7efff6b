#pragma once

// Conversions between the forms of Japanese characters: hiragana and katakana, full and half width. Other
// characters stay as they are.

#include <string>
#include <string_view>

namespace host {

std::u16string hiragana(std::u16string_view text); // from katakana of both widths
std::u16string katakana(std::u16string_view text); // from hiragana
std::u16string halfWidthKana(std::u16string_view text);
std::u16string fullWidthKana(std::u16string_view text);
std::u16string halfWidthRoman(std::u16string_view text); // ASCII
std::u16string fullWidthRoman(std::u16string_view text);

} // namespace host
