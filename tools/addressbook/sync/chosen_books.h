#pragma once

// The address books that `sync` is asked to keep in step.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <vector>

namespace addressbook::tool {

struct NamedBook {
    SyncCollection book;
    std::string name; // "ACCOUNT/BOOK"
};

// An account with those of its address books that are chosen; at least one.
struct AccountBooks {
    SyncAccount account;
    std::vector<NamedBook> books;
};

// Returns the address books that "ACCOUNT" or "ACCOUNT/BOOK" name, each once; without names all. Throws Failure when
// there is none, or one that does not exist.
std::vector<AccountBooks> chosenBooks(const Store& store, const std::vector<std::string>& names);

} // namespace addressbook::tool
