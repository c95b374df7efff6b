#pragma once

// The encodings of text and data in property values: character sets, quoted-printable, base64, backslashes.

#include "frameworks/AddressBook/values/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// Returns bytes in [charset] as UTF-8. When there is no charset, or an unknown one, or the bytes are not
// valid in it: returns them unchanged if they are UTF-8, else reads them as windows-1252, which most programs
// write that declare none.
std::string toUtf8(std::string bytes, std::string_view charset);

// Returns whether bytes are UTF-8, be it cut inside a character here and there.
bool looksLikeUtf8(std::string_view bytes);

// Returns the bytes that quoted-printable text stands for. Malformed escapes stay as they are.
std::string decodeQuotedPrintable(std::string_view text);

// The result of decoding base64 text, in which white space is ignored and padding is optional.
struct Base64 {
    Bytes bytes;
    bool valid = false;   // no character that is none of base64, nothing after the padding
    bool complete = true; // false: a last character is left over that makes no byte
};
Base64 decodeBase64(std::string_view text);
std::string encodeBase64(const Bytes& bytes);
// Returns base64 text without the white space in it.
std::string withoutBlanks(std::string text);

// Returns a text value unescaped: "\n" is a line end (unless [keepN]); "\," "\;" "\:" "\\" and an escaped
// quote are the characters themselves; any other backslash stays.
std::string unescape(std::string_view text, bool keepN = false);

// Returns text as a value or a component: escapes line ends, backslashes, commas and semicolons.
std::string escape(std::string_view text);

// Returns a URI as a value: its commas and semicolons are not escaped.
std::string escapeUri(std::string_view text);

// Whether [text] has a [separator] that is not escaped.
bool hasUnescaped(std::string_view text, char separator);

// The most components of a value, which is more than any has; lists may have more.
inline constexpr std::size_t kMaxParts = 1000;

// Splits at each [separator] that is not escaped, into at most [most] parts, the last of which has the rest.
// The parts are still escaped.
std::vector<std::string_view> splitEscaped(std::string_view text, char separator,
                                           std::size_t most = kMaxParts);

// Splits at each [separator] outside quotes, which are kept; at every separator when a quote is not closed.
std::vector<std::string_view> splitQuoted(std::string_view text, char separator);

// ASCII helpers; other bytes stay as they are.
std::string upperCase(std::string_view text);
std::string lowerCase(std::string_view text);
bool equalsIgnoringCase(std::string_view left, std::string_view right);

} // namespace addressbook::vcard
