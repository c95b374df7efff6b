#pragma once

// What version 4.0 says in another way than 3.0. The address book keeps lines as 3.0 has them.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"

namespace addressbook::vcard {

// Makes a line of version 4.0 of one that says what the address book knows.
void toVersion4(CardLine& line);

// The same for a line that no property holds, and back.
void toVersion4(ContentLine& line);
void fromVersion4(ContentLine& line);

} // namespace addressbook::vcard
