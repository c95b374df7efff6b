#pragma once

// Text in encodings other than Unicode's.

#include "host/values/container.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

// Returns a text as bytes in an encoding: utf-8, iso-8859-1, windows-1251, windows-1252, shift_jis, gb18030,
// euc-kr, big5 or macintosh. Characters that it does not have become question marks. Nothing for another
// name.
std::optional<Bytes> encodedText(std::u16string_view text, std::u16string_view encoding);

// Returns the text of bytes in one of these encodings; nothing for another name.
std::optional<std::u16string> decodedText(std::span<const unsigned char> bytes, std::u16string_view encoding);

} // namespace host
