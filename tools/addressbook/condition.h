#pragma once

// Searches as users write them:
//
//   search    = all { "or" all }
//   all       = part { "and" part }
//   part      = "(" search ")" | condition
//   condition = property [ "key" word ] [ "label" word ] comparison value
//   value     = text in quotes | number | number "days" | date, as 2026-01-31 | "nil"
//
// A property goes by the framework's name or by ours; one that only groups have makes it a search for groups.
// A comparison goes by the framework's name without kAB, or by a short one. Words are taken in any letter
// case, those in quotes as they are; in quotes, \n is a
// line end, \t a tab, and \ takes any other character as it is.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <string_view>

namespace addressbook::tool {

// Throws std::invalid_argument with the column, what was expected there and what is there.
Query parseSearch(std::string_view text, const Store& store);

// A condition as parseSearch reads it, by the framework's names.
std::string conditionText(const Condition& condition);

// The short names of comparisons, as a help tells them.
std::string shortComparisons();

} // namespace addressbook::tool
