#pragma once

// How searches are answered, for users.

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/output.h"

namespace addressbook::tool {

// Runs the search and writes how it was answered: each condition in the order in which they ran, with its
// index, what was looked at, the hits and the time.
void explainSearch(const Store& store, const Query& query, Date now, Output& output);

} // namespace addressbook::tool
