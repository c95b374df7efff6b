#pragma once

// Putting another database in the place of the address book's, while other processes have it open.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <filesystem>
#include <memory>

namespace addressbook {

// Copies the database of [from] into a new file, as it is at one moment; others may go on writing. Throws
// StoreError.
void copyDatabase(const sql::Connection& from, const std::filesystem::path& to);

// Holds the write lock of the address book in a folder, so that nobody saves while it lives. A book that is
// missing, or too damaged to be opened, has no lock.
class LockedBook {
  public:
    // Takes the lock. Throws StoreError when another program does not let go of it.
    explicit LockedBook(const std::filesystem::path& folder);

    // Puts the database [draft], which must be closed, into the book's place in one step. What was there
    // stays in the folder under a name with the date; returns that name, empty when there was no book.
    // Programs that have the book open see that it was replaced (Store::moved). Throws StoreError, and then
    // the old book is in its place.
    std::filesystem::path replaceWith(const std::filesystem::path& draft);

  private:
    // Takes the draft's log over into the database: closing it does so, too, but says nothing when it cannot.
    void checkpoint(const std::filesystem::path& draft) const;

    std::filesystem::path file_;
    std::unique_ptr<sql::Connection> connection_; // the transaction ends with it
};

} // namespace addressbook
