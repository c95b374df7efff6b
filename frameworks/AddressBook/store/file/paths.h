#pragma once

// Where the address book lies, and the files that are made there: for their owner only.

#include "frameworks/AddressBook/store/access.h"
#include "frameworks/AddressBook/store/sql/store_error.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace addressbook {

// The database's name inside its folder.
inline constexpr const char* kFileName = "AddressBook.db";

// Returns $ADDRESSBOOK_HOME, else $XDG_DATA_HOME/AddressBook, else ~/.local/share/AddressBook.
std::filesystem::path defaultFolder();

// Makes sure that a book's [folder] is there. With readWrite, makes its last component when it is missing,
// and all components of the default folder; but never $ADDRESSBOOK_HOME, so that a mistyped name is an error
// and not a new address book. Throws StoreError.
void requireFolder(const std::filesystem::path& folder, Access access);

// Returns the folder that a file is or will be in; "." for a mere name.
std::filesystem::path folderOf(const std::filesystem::path& file);

// Returns the name under which SQLite opens a file; [query] holds its options, "?immutable=1" for instance.
std::string databaseUri(const std::filesystem::path& file, std::string_view query = "");

// Makes an empty file for its owner only. Throws StoreError, also when there is one.
void makePrivateFile(const std::filesystem::path& file);

// Waits until what was named, renamed and removed in a folder is on the disk.
void syncFolder(const std::filesystem::path& folder);

// Returns a system call's [error] as one sentence: "[sentence] [path] (reason): [remedy]."
StoreError systemError(const std::string& sentence, const std::filesystem::path& path, int error,
                       const char* remedy);

} // namespace addressbook
