#pragma once

// Bytes written as text: Base64 and hexadecimal digits.

#include "host/values/container.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

using ByteView = std::span<const unsigned char>;

// Lines of [columns] characters, a multiple of 4, each followed by CR LF; 0 for a single line without an end.
std::u16string base64Text(ByteView bytes, size_t columns);

// Nothing for a text that is no Base64. White space does not count.
std::optional<Bytes> base64Bytes(std::u16string_view text);

// Two capital digits for each byte.
std::u16string hexadecimal(ByteView bytes);

// Nothing for a text that is no such digits. White space does not count.
std::optional<Bytes> hexadecimalBytes(std::u16string_view text);

} // namespace host
