#pragma once

// What a card says, in short: by this a card without UID is known again.

#include "frameworks/AddressBook/vcard/content_line.h"

#include <span>
#include <string>

namespace addressbook::vcard {

// Returns a UUID made of the lines of a card, as another program wrote them. It does not depend on the order of
// the lines, their encodings, the version, the program or the time of writing, nor on what the address book makes
// of them. It must never change, or cards would be taken for new ones.
std::string digestOf(std::span<const ContentLine> lines);

} // namespace addressbook::vcard
