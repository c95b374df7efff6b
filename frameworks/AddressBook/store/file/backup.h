#pragma once

// Backups of the whole address book: making one, and restoring it.

#include "frameworks/AddressBook/store/store.h"

#include <filesystem>
#include <stdexcept>

namespace addressbook {

// Thrown when something is wrong with the file of a backup, not with the address book. what() is one sentence
// for users.
class BackupError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a backup holds, and which book it replaced.
struct CopySummary {
    std::int64_t people = 0, groups = 0;
    std::filesystem::path kept; // where restore() keeps the book that it replaced; empty: there was none
};

// Writes everything that is saved in the address book in [folder] into one file, which only its owner may
// read. Other processes may save meanwhile. The file gets its name only when it is complete and was checked;
// an existing file is refused or replaced. Throws StoreError and BackupError.
enum class Existing { refuse, replace };
CopySummary backUp(const std::filesystem::path& folder, const std::filesystem::path& file, Existing existing,
                   const Progress& progress = {});

// Replaces the address book in [folder] by the backup in [file], once the backup was checked. Throws
// StoreError and BackupError, and then the book is unchanged.
CopySummary restore(const std::filesystem::path& folder, const std::filesystem::path& file,
                    const Progress& progress = {});

} // namespace addressbook
