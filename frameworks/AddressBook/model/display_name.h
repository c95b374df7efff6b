#pragma once

#include "frameworks/AddressBook/model/book.h"

namespace addressbook {

// The name to show for a record: a group's name; a company's; a person's names in the card's order. A person
// without any of these is called by company, nickname, the first e-mail address or the first phone number.
std::string displayName(Book& book, LiveRecord& record);

} // namespace addressbook
