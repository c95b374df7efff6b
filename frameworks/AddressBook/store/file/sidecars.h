#pragma once

// What SQLite leaves beside a database when a program is killed, for the next one that opens it: a log of
// saves that are not in the file yet (-wal), and a journal to undo a save that was interrupted (-journal).
// One of another file, or of an older state of this one, would make a mixture of both.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace addressbook {

// Row of sqlite_sequence that holds the book's random id. There is no table of that name: the row shares the
// page that every save rewrites anyway.
inline constexpr std::string_view kBookId = "book";

// Returns the name of the file beside a database file with this [suffix], "-wal" for instance.
std::filesystem::path sidecarPath(std::filesystem::path file, const char* suffix);

// Whether there is such a file beside [file], with something in it.
bool hasSidecar(const std::filesystem::path& file, const char* suffix);

// What the last connection does with the log when it closes.
enum class WalAtClose { checkpoint, keep };
void setWalAtClose(const sql::Connection& connection, WalAtClose what);

// Opens [file] by [open], whose connection must keep the log at its close (setWalAtClose). Refuses a log that
// is not the file's own before anything of it gets into the file. Throws StoreError.
std::unique_ptr<sql::Connection>
openWithCheckedWal(const std::filesystem::path& file,
                   const std::function<std::unique_ptr<sql::Connection>()>& open);

// Whether the log beside [file] belongs to it. One that cannot be read is taken for its own.
bool walBelongsTo(const std::filesystem::path& file);

// Whether the rollback journal beside [file] belongs to it: SQLite replays it on open, so ask first. Throws
// StoreError when that cannot be found out.
bool journalBelongsTo(const std::filesystem::path& file);

// Throws StoreError when the journal beside [file] does not belong to it.
void requireJournalBelongsTo(const std::filesystem::path& file);

} // namespace addressbook
