#pragma once

// Copies of the whole address book, and putting one back.

#include "frameworks/AddressBook/store/store.h"

#include <filesystem>
#include <stdexcept>

namespace addressbook {

// Something is wrong with the file of a backup, not with the address book. what() is one sentence.
class BackupError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a copy holds, and what it replaced.
struct CopySummary {
    std::int64_t people = 0, groups = 0;
    std::filesystem::path kept; // where the book that was replaced is; empty when there was none
};

// Writes everything that is saved in the address book in [folder] into one file, for its owner only; others
// may go on saving meanwhile. The file has its name only when it is whole and was found sound; one that is
// there is refused or replaced. Throws StoreError and BackupError.
enum class Existing { refuse, replace };
CopySummary backUp(const std::filesystem::path& folder, const std::filesystem::path& file, Existing existing);

// Puts the backup in the place of the address book in [folder] once it was found sound. Throws StoreError
// and BackupError, and then the book is as it was.
CopySummary restore(const std::filesystem::path& folder, const std::filesystem::path& file);

} // namespace addressbook
