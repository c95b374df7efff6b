#pragma once

// Repair of a damaged address book: whatever can be read is written into a new one.

#include "frameworks/AddressBook/store/store.h"

#include <filesystem>
#include <string>
#include <vector>

namespace addressbook {

// What a repair did.
struct RepairReport {
    bool needed = false;                 // false: the book was sound and was left alone
    std::int64_t people = 0, groups = 0; // what the new book holds
    std::filesystem::path kept;          // where the damaged book is kept
    std::vector<std::string> lost;       // a sentence for each thing that is lost or doubtful
};

// Makes a new address book from whatever can be read of the one in [folder], puts it in its place, and keeps
// the damaged one beside it. Records keep their order, unique ids and dates; the search indexes are rebuilt.
// Nobody can save meanwhile. Throws StoreError, notably when nothing can be read, and then the book is
// unchanged.
RepairReport repair(const std::filesystem::path& folder, const Progress& progress = {});

} // namespace addressbook
