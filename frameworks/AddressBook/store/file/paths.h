#pragma once

// Where the address book is, and how files are made there, which only their owner may read.

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

// Throws StoreError unless a book's [folder] is there. With readWrite, first makes its last component when
// that is missing, or all components of the default folder; but never $ADDRESSBOOK_HOME, so that a mistyped
// name is an error and not a new address book.
void requireFolder(const std::filesystem::path& folder, Access access);

// Throws the StoreError with which a new book could not be made in [folder]; makes nothing.
void requirePlace(const std::filesystem::path& folder);

// Returns the folder that a file is or will be in; "." for a mere name.
std::filesystem::path folderOf(const std::filesystem::path& file);

// Returns the URI under which SQLite opens a file; [query] holds options, "?immutable=1" for instance.
std::string databaseUri(const std::filesystem::path& file, std::string_view query = "");

// Makes an empty file that only its owner may read and write. Throws StoreError, also when the file exists.
void makePrivateFile(const std::filesystem::path& file);

// Waits until what was written into the file is on the disk. Returns whether it is; errno tells why not.
bool syncFile(const std::filesystem::path& file);

// Waits until the folder itself, with the names of new, renamed and removed files, is on the disk.
void syncFolder(const std::filesystem::path& folder);

// Returns the error for a system call that failed with errno [error]: "[sentence] [path] (reason): [remedy]."
StoreError systemError(const std::string& sentence, const std::filesystem::path& path, int error,
                       const char* remedy);

} // namespace addressbook
