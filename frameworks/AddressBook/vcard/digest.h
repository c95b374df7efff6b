#pragma once

// What a card says, in short: by this a card without UID is known again.

#include "frameworks/AddressBook/vcard/content_line.h"

#include <span>
#include <string>

namespace addressbook::vcard {

// Returns what the lines of a card say, as another program wrote them. It does not depend on the order of the
// lines, their encodings, the version, the program or the time of writing, nor on what the address book makes of
// them. It must never change, or cards would be taken for new ones.
std::string contentsOf(std::span<const ContentLine> lines);

// Returns a digest of what a card says: a UUID for a card without UID, whose id it becomes, and a shorter and
// faster one for a card that [hasUid].
std::string digestOf(const std::string& contents, bool hasUid);

} // namespace addressbook::vcard
