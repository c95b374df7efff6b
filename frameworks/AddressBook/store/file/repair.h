#pragma once

// Rescuing what can be read of a damaged address book.

#include "frameworks/AddressBook/store/store.h"

#include <filesystem>
#include <string>
#include <vector>

namespace addressbook {

// What a repair did.
struct RepairReport {
    bool needed = false;                 // false: the book was sound and was left alone
    std::int64_t people = 0, groups = 0; // what the new book holds
    std::filesystem::path kept;          // the damaged book
    std::vector<std::string> lost;       // what is lost or doubtful, a sentence each; empty: nothing
};

// Makes a new address book of what can be read in the one in [folder], and puts it into its place. The search
// indexes are made anew; records keep their order, unique ids and dates. The damaged one is kept beside it.
// Nobody can save meanwhile. Throws StoreError, notably when nothing can be read, and then the book is as it
// was.
RepairReport repair(const std::filesystem::path& folder);

} // namespace addressbook
