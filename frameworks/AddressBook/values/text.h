#pragma once

// Text: the two encodings, and the two forms in which it is compared. UTF-8 here may hold a lone surrogate as
// the three-byte sequence of its code point, and zero characters; nothing in it is ever lost or mistaken for
// an end.

#include <string>
#include <string_view>

namespace addressbook {

// Return UTF-16 as UTF-8, and UTF-8 as UTF-16: every UTF-16 text returns unchanged. Bytes that are no UTF-8
// become U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
std::u16string utf16FromUtf8(std::string_view text);

// Returns the composed form (NFC), in which canonically equivalent texts are the same bytes.
std::string normalize(std::string_view text);

// Returns the form for comparisons that ignore case: NFC, then full Unicode case folding. Accents stay.
// Folding maps each character by itself, so a text that begins with, ends with or contains another does so
// when both are folded too.
std::string fold(std::string_view text);

// Returns the folded form of a text that is in NFC already.
std::string foldNormalized(std::string_view text);

// Returns the version of Unicode that normalizing and folding follow; a newer one may treat new characters
// differently.
std::string unicodeVersion();

// Whether every byte is below 0x80: such text is in NFC.
bool isAscii(std::string_view text);

// Whether a byte of UTF-8 goes on with the character that an earlier byte began.
constexpr bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Returns how many characters (code points) a text has.
std::size_t countCharacters(std::string_view text);

// Return the longest beginning and the longest ending of [text] that have at most [bytes] bytes and are cut
// between two characters.
std::string_view beginning(std::string_view text, std::size_t bytes);
std::string_view ending(std::string_view text, std::size_t bytes);

} // namespace addressbook
