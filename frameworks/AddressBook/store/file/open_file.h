#pragma once

// Opening the address book's file, and making it. A new file is complete from the moment it has its name.

#include "frameworks/AddressBook/store/access.h"
#include "frameworks/AddressBook/store/file/file_stamp.h"
#include "frameworks/AddressBook/store/sql/sql.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

namespace addressbook {

// An open connection.
struct OpenedFile {
    std::unique_ptr<sql::Connection> connection;
    bool readOnly = false;
    // Set when the connection reads the files without locks: their state before they were opened.
    std::optional<FileStamp> stamp;
};

// Opens the database in [folder], making folder and file as Store's constructor says, and upgrades it to the
// current schema. A file or folder that may not be written is opened for reading. Throws StoreError.
OpenedFile openAddressBook(const std::filesystem::path& folder, Access access,
                           std::chrono::milliseconds busyTimeout);

// Throws the StoreError with which openAddressBook() could make no new book in [folder], in which there is
// none; makes nothing.
void requirePlaceForBook(const std::filesystem::path& folder);

} // namespace addressbook
