#pragma once

// The identifiers of records and entries: new ones, and their packed form.

#include "frameworks/AddressBook/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Returns a new random UUID in capitals. Throws std::system_error when the system has no random numbers.
std::string newUuid();

// Returns a new identifier of a record, as "<UUID>:ABPerson" or "<UUID>:ABGroup".
std::string newUid(Kind kind);

// Returns the packed form of a UUID in capitals, alone or before ":ABPerson" or ":ABGroup": 16 or 17 bytes.
// Nothing for any other text.
std::optional<std::string> packUid(std::string_view text);

// Whether bytes have the length of a packed unique id or identifier; and its text, nothing when they have
// not.
bool isPackedUid(std::string_view bytes);
std::optional<std::string> unpackUid(std::string_view bytes);

} // namespace addressbook
