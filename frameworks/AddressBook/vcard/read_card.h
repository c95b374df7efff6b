#pragma once

// The last layer of reading: converts the property lines of a card to the values of a person or a group.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <variant>
#include <vector>

namespace addressbook::vcard {

// Returns the card with these lines, which it takes apart; [number] and [line] are the card's. A Problem when
// it has nothing of use, or is inconsistent. [origins], where given, become those of the lines.
std::variant<Card, Problem> readCard(std::vector<ContentLine>& lines, std::size_t number, std::size_t line,
                                     std::vector<Origin>* origins = nullptr);

} // namespace addressbook::vcard
