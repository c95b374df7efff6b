#pragma once

// Searching all that is written about people and groups.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <vector>

namespace addressbook::tool {

// Returns the rows of the people, then those of the groups, in which every one of [words] is found: inside any text, in
// any letter case; a number of at least three digits also inside a phone number, whatever stands between its digits.
std::vector<RowId> findWords(const Store& store, const std::vector<std::string>& words);

} // namespace addressbook::tool
