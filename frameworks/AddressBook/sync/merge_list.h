#pragma once

// The lists of a card, brought together entry by entry; see merge.h.

#include "frameworks/AddressBook/sync/conflict.h"

#include <string>
#include <vector>

namespace addressbook::sync {

// Returns the list with the changes that [local] and [remote] made since [base]. Adds the entries that had to yield to
// [conflicts], as those of [property].
MultiValue mergeLists(const MultiValue& base, const MultiValue& local, const MultiValue& remote, Side winner,
                      const std::string& property, std::vector<Conflict>& conflicts);

} // namespace addressbook::sync
