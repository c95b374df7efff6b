#pragma once

// Searches as users write them:
//
//   search    = all { "or" all }
//   all       = part { "and" part }
//   part      = "(" search ")" | condition
//   condition = property [ "key" word ] [ "label" word ] comparison value
//   value     = text in quotes | number | number "days" | date, as 2026-01-31 | "nil"
//
// A property is named as in the framework or by the names of fields.h; one that only groups have makes it a
// search for groups. A comparison is named as in the framework without kAB, or by a short name. Words may be
// in any letter case; text in quotes is taken literally, except for \n, a line end, \t, a tab, and \ before
// any other character, which stands for that character.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <string_view>

namespace addressbook::tool {

// Returns the query for a search. Throws std::invalid_argument with the column, what was expected there and
// what was found.
Query parseSearch(std::string_view text, const Store& store);

// Returns a condition in the form that parseSearch() reads, with the framework's names.
std::string conditionText(const Condition& condition);

// Returns the list of the comparisons' short names, for the help.
std::string shortComparisons();

} // namespace addressbook::tool
