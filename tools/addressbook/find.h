#pragma once

// The command `find`: searching all texts of people and groups.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <vector>

namespace addressbook::tool {

// Returns the rows of the people, then those of the groups, in which each of [words] is found: inside any
// text, in any letter case; or, for a number of at least three digits, inside a phone number, ignoring what
// separates its digits.
std::vector<RowId> findWords(const Store& store, const std::vector<std::string>& words);

} // namespace addressbook::tool
