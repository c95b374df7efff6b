#pragma once

// Unique ids and identifiers in less space: a UUID in capitals, alone or before ":ABPerson" or ":ABGroup",
// takes 16 or 17 bytes.

#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Nothing for any other text.
std::optional<std::string> packUid(std::string_view text);

// Whether bytes have the length of a packed unique id or identifier; and its text, nothing when they have
// not.
bool isPackedUid(std::string_view bytes);
std::optional<std::string> unpackUid(std::string_view bytes);

} // namespace addressbook
