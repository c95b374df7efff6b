#pragma once

// The command `explain`: how searches are answered.

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/output.h"

namespace addressbook::tool {

// Runs a search and writes how it was answered: the conditions in the order in which they were searched, each
// with its access path, the number of rows and records read, the hits and the time.
void explainSearch(const Store& store, const Query& query, Date now, Output& output);

} // namespace addressbook::tool
