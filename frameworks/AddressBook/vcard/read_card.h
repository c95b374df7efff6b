#pragma once

// The last layer of reading: the property lines of one card into the values of a person or a group.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <variant>
#include <vector>

namespace addressbook::vcard {

// What [lines] say; [number] and [line] are the card's. A Problem when nothing in it is of use or it is
// inconsistent.
std::variant<Card, Problem> readCard(std::vector<ContentLine> lines, std::size_t number, std::size_t line);

} // namespace addressbook::vcard
