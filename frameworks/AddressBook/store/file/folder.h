#pragma once

// Where the address book lies, and how its file comes to be: for its owner only, and complete from the first
// moment.

#include "frameworks/AddressBook/store/file/file_stamp.h"
#include "frameworks/AddressBook/store/sql/sql.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// The database's name inside its folder.
inline constexpr const char* kFileName = "AddressBook.db";

// A connection and what it can do.
struct OpenedFile {
    std::unique_ptr<sql::Connection> connection;
    bool readOnly = false;
    std::optional<FileStamp> stamp; // of files that the connection looks at no more
};

// Opens the database in [folder], making folder and file as Store's constructor says, and brings it to the
// current schema. A file or folder that may not be written is opened for reading. Throws StoreError.
OpenedFile openAddressBook(const std::filesystem::path& folder, Store::Access mode,
                           std::chrono::milliseconds busyTimeout);

// Makes the book's [folder] as Store's constructor says. Throws StoreError when it is not there.
void prepareFolder(const std::filesystem::path& folder);

// The name under which SQLite opens a file; [query] holds its options, "?immutable=1" for instance.
std::string databaseUri(const std::filesystem::path& file, std::string_view query = "");

// Makes an empty file for its owner only. Throws StoreError, also when there is one.
void makePrivateFile(const std::filesystem::path& file);

// Makes sure that what was named, renamed and removed in a folder stays so.
void syncFolder(const std::filesystem::path& folder);

// A system call's [error] as one sentence: "[sentence] [path] (reason): [remedy]."
StoreError systemError(const std::string& sentence, const std::filesystem::path& path, int error,
                       const char* remedy);

} // namespace addressbook
