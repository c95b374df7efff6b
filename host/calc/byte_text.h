#pragma once

// Bytes as text: Base64 and hexadecimal digits. White space is ignored when reading either.

#include "host/values/container.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

using ByteView = std::span<const unsigned char>;

// Returns Base64 in lines of [columns] characters, a multiple of 4, each followed by CR LF; with 0, in a
// single line without a line end.
std::u16string base64Text(ByteView bytes, size_t columns);

// Returns the bytes that a text in Base64 stands for; nothing for any other text.
std::optional<Bytes> base64Bytes(std::u16string_view text);

// Returns two digits, in capitals, for each byte.
std::u16string hexadecimal(ByteView bytes);

// Returns the bytes that hexadecimal digits stand for; nothing for any other text.
std::optional<Bytes> hexadecimalBytes(std::u16string_view text);

} // namespace host
