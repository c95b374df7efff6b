#pragma once

// How text and data are encoded in property values: character sets, quoted-printable, base64, backslashes.

#include "frameworks/AddressBook/values/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// Bytes in [charset] as UTF-8. With no charset, an unknown one, or bytes that are not in it: as they are when
// they are UTF-8, else read as windows-1252, which most programs that declare nothing wrote.
std::string toUtf8(std::string bytes, std::string_view charset);

// The bytes that quoted-printable text stands for. Malformed escapes stay as they are.
std::string decodeQuotedPrintable(std::string_view text);

// Base64 text decoded: white space is ignored, padding is optional.
struct Base64 {
    Bytes bytes;
    bool valid = false;   // no character that is none of base64, nothing after the padding
    bool complete = true; // false: a last character is left over that makes no byte
};
Base64 decodeBase64(std::string_view text);
std::string encodeBase64(const Bytes& bytes);

// Takes the backslashes of a text value away: "\n" is a line end (unless [keepN]), "\," "\;" "\:" "\\" and
// the quote stand for themselves, any other backslash stays.
std::string unescape(std::string_view text, bool keepN = false);

// Text as a value or a component of one: line ends, backslashes, commas and semicolons escaped.
std::string escape(std::string_view text);

// An address (URI) as a value: its commas and semicolons are its own.
std::string escapeUri(std::string_view text);

// Whether [separator] stands in [text] with no backslash before it.
bool hasUnescaped(std::string_view text, char separator);

// More components than any value has; of lists there may be more.
inline constexpr std::size_t kMaxParts = 1000;

// Splits at each [separator] that no backslash precedes, into [most] parts, the last of which takes the rest;
// the parts are still escaped.
std::vector<std::string_view> splitEscaped(std::string_view text, char separator,
                                           std::size_t most = kMaxParts);

// Splits at each [separator] outside quotes, with the quotes kept; everywhere when a quote is left open.
std::vector<std::string_view> splitQuoted(std::string_view text, char separator);

// ASCII helpers; other bytes stay as they are.
std::string upperCase(std::string_view text);
std::string lowerCase(std::string_view text);
bool equalsIgnoringCase(std::string_view left, std::string_view right);
std::string_view trim(std::string_view text);

} // namespace addressbook::vcard
