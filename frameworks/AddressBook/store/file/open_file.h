#pragma once

// Opening the address book's file, and making it: complete from the first moment it has its name.

#include "frameworks/AddressBook/store/access.h"
#include "frameworks/AddressBook/store/file/file_stamp.h"
#include "frameworks/AddressBook/store/sql/sql.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

namespace addressbook {

// A connection and what it can do.
struct OpenedFile {
    std::unique_ptr<sql::Connection> connection;
    bool readOnly = false;
    // Of files that the connection reads without locks and never looks at again.
    std::optional<FileStamp> stamp;
};

// Opens the database in [folder], making folder and file as Store's constructor says, and brings it to the
// current schema. A file or folder that may not be written is opened for reading. Throws StoreError.
OpenedFile openAddressBook(const std::filesystem::path& folder, Access access,
                           std::chrono::milliseconds busyTimeout);

} // namespace addressbook
