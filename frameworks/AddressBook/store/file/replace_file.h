#pragma once

// Replacing the address book's database by another one, while other processes have it open.

#include "frameworks/AddressBook/store/progress.h"
#include "frameworks/AddressBook/store/sql/sql.h"

#include <filesystem>
#include <memory>

namespace addressbook {

// Copies the database of [from] into the new file [to], as of one moment; other processes may write
// meanwhile. Throws StoreError.
void copyDatabase(sql::Connection& from, const std::filesystem::path& to, const Progress& progress);

// Removes the sidecars of the book that [file] replaced, which a program left that was killed before it could. Returns
// whether there were any, so that [file] may be opened now. Throws StoreError when they cannot be removed.
bool finishReplacing(const std::filesystem::path& file);

// Holds the write lock of the address book in a folder, so that no process saves while it lives. For a book
// that is missing, or too damaged to be opened, it holds nothing.
class LockedBook {
  public:
    // Takes the lock, waiting up to 10 s for it. Throws StoreError.
    explicit LockedBook(const std::filesystem::path& folder);

    // Atomically replaces the book by the database [draft], which must be closed. The old book stays in its
    // folder under a name with the date, which is returned; empty when there was no book. Programs that have
    // the book open notice by Store::moved(). Throws StoreError, and then the old book is in its place.
    std::filesystem::path replaceWith(const std::filesystem::path& draft);

  private:
    // Writes the draft's log into the draft. Closing would do so as well, but reports no errors.
    void checkpoint(const std::filesystem::path& draft) const;

    std::filesystem::path file_;
    std::unique_ptr<sql::Connection> connection_; // its transaction holds the lock
};

} // namespace addressbook
