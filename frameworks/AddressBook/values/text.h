#pragma once

// Text: the two encodings, and the two forms in which it is compared. UTF-8 here may hold a lone surrogate,
// as the three-byte sequence of its code point, and NUL characters, which do not end it: no text is changed
// by being converted.

#include <string>
#include <string_view>

namespace addressbook {

// Convert between UTF-16 and UTF-8. Any UTF-16 text, converted to UTF-8 and back, is unchanged. Bytes that
// are not UTF-8 become U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
std::u16string utf16FromUtf8(std::string_view text);

// Like utf16FromUtf8(), into memory for as many units as there are bytes, which are never fewer; returns the number of
// units.
std::size_t utf16FromUtf8(std::string_view text, char16_t* to);

// Returns the composed form (NFC), in which canonically equivalent texts are the same bytes.
std::string normalize(std::string_view text);

// Returns the form for comparisons that ignore case: NFC, then full Unicode case folding. Accents stay.
// Each character is folded independently, so when a text begins with, ends with or contains another, its
// folded form does so with the other's.
std::string fold(std::string_view text);

// Returns the folded form of a text that is in NFC already.
std::string foldNormalized(std::string_view text);

// Returns the version of Unicode that normalize() and fold() follow. What they return for characters that are
// new in a later version may change with it, and indexes made with the old one are then stale.
std::string unicodeVersion();

// Whether every byte is below 0x80: such text is in NFC.
bool isAscii(std::string_view text);

// Whether a byte of UTF-8 continues a character, instead of beginning one.
constexpr bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Returns [text] without the spaces, tabs and line ends before and behind it.
std::string_view trim(std::string_view text);

// Returns the number of characters (code points) in a text.
std::size_t countCharacters(std::string_view text);

// Return the longest prefix and the longest suffix of [text] with at most [bytes] bytes that do not split a
// character.
std::string_view beginning(std::string_view text, std::size_t bytes);
std::string_view ending(std::string_view text, std::size_t bytes);

// Returns the characters (code points) of a well-formed text in reverse order.
std::string reversed(std::string_view text);

} // namespace addressbook
