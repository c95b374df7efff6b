#pragma once

// The differences between versions 4.0 and 3.0. The address book keeps lines in the form of 3.0.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"

namespace addressbook::vcard {

// Converts a line of a value to version 4.0.
void toVersion4(CardLine& line);

// Convert a line that no property holds to version 4.0, and back.
void toVersion4(ContentLine& line);
void fromVersion4(ContentLine& line);

} // namespace addressbook::vcard
