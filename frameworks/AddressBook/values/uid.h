#pragma once

// The identifiers of records and of the entries of lists: making new ones, and the packed form in which the
// database keeps them.

#include "frameworks/AddressBook/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Returns a new random UUID in capitals. Throws std::system_error when the system has no random numbers.
std::string newUuid();

// Returns a new identifier of a record, as "<UUID>:ABPerson" or "<UUID>:ABGroup".
std::string newUid(Kind kind);

// Returns the packed form of a UUID in capitals: its 16 bytes; for one that ":ABPerson" or ":ABGroup"
// follows, 17 bytes. Nothing for any other text, which has no packed form.
std::optional<std::string> packUid(std::string_view text);

// Whether [bytes] have the length of a packed identifier; and the text that they stand for, nothing when they
// have not.
bool isPackedUid(std::string_view bytes);
std::optional<std::string> unpackUid(std::string_view bytes);

} // namespace addressbook
