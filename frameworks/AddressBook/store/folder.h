#pragma once

// Where the address book lies, and how its file comes to be: for its owner only, and complete from the first
// moment.

#include "sql.h"

#include <chrono>
#include <filesystem>
#include <memory>

namespace addressbook {

// The database's name inside its folder.
inline constexpr const char* kFileName = "AddressBook.db";

// A connection and whether it can write.
struct OpenedFile {
    std::unique_ptr<sql::Connection> connection;
    bool readOnly = false;
};

// Opens the database in [folder], making folder and file as Store's constructor says, and brings it to the
// current schema. A file or folder that may not be written is opened for reading. Throws StoreError.
OpenedFile openAddressBook(const std::filesystem::path& folder, Store::Access mode,
                           std::chrono::milliseconds patience);

} // namespace addressbook
