#pragma once

// The files that SQLite leaves beside a database when a program is killed: a log of saves that are not in the
// database yet (-wal), and a journal to undo a save that was interrupted (-journal). The next program that
// opens the database applies them. If they belonged to another file, or to an older state of this one, the
// database would become a mixture of both.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace addressbook {

// Row of sqlite_sequence that holds the book's random id. There is no table of that name: the row shares the
// page that every save rewrites anyway.
inline constexpr std::string_view kBookId = "book";

// Returns the path of a database's sidecar with this [suffix], "-wal" for instance.
std::filesystem::path sidecarPath(std::filesystem::path file, const char* suffix);

// Whether [file] has a sidecar with this [suffix] that is not empty.
bool hasSidecar(const std::filesystem::path& file, const char* suffix);

// Throws StoreError when the database or one of its sidecars is a symbolic link, which could lead a save to any file of
// the user's. The folder may be one.
void requireNoLinks(const std::filesystem::path& file);

// Whether the last connection, when it closes, writes the log into the database and removes it, or keeps it.
enum class WalAtClose { checkpoint, keep };
void setWalAtClose(const sql::Connection& connection, WalAtClose what);

// Opens [file] by calling [open], which must set WalAtClose::keep on the connection. Throws StoreError
// (damaged) when the log does not belong to the file, before anything of it is written there. The connection
// returned has WalAtClose::checkpoint.
std::unique_ptr<sql::Connection>
openWithCheckedWal(const std::filesystem::path& file,
                   const std::function<std::unique_ptr<sql::Connection>()>& open);

// Notes in [draft], a database that is to take the place of [file], how the sidecars begin that [file] has now. They
// are removed after it has; until then, also when the program is killed, isOfReplacedBook() tells them.
void noteSidecars(sql::Connection& draft, const std::filesystem::path& file);

// Whether the sidecar beside [file] is one that the book had which [file] replaced.
bool isOfReplacedBook(const std::filesystem::path& file, const char* suffix);

// Whether the log beside [file] belongs to it. One that cannot be read counts as belonging to it.
bool walBelongsTo(const std::filesystem::path& file);

// Whether the rollback journal beside [file] belongs to it. SQLite replays it when it opens the file, so ask
// first. Throws StoreError when that cannot be determined.
bool journalBelongsTo(const std::filesystem::path& file);

// Throws StoreError when the journal beside [file] does not belong to it.
void requireJournalBelongsTo(const std::filesystem::path& file);

} // namespace addressbook
