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

// In sqlite_sequence, which every save writes, with a number that is this book's own; no table of that name.
inline constexpr std::string_view kBookId = "book";

// The file beside a database file, "-wal" for instance.
std::filesystem::path sidecarPath(std::filesystem::path file, const char* suffix);

// Whether there is such a file, and something in it.
bool hasSidecar(const std::filesystem::path& file, const char* suffix);

// Whether the last connection that closes leaves the log as it is.
void keepWalAtClose(const sql::Connection& connection, bool keep);

// Opens a file by [open], whose connection keeps the log at its close, and refuses a log that is not the
// file's own before anything of it gets into the file. Throws StoreError.
std::unique_ptr<sql::Connection>
openWithCheckedWal(const std::filesystem::path& file,
                   const std::function<std::unique_ptr<sql::Connection>()>& open);

// Whether the log beside a database file is its own. What cannot be read is taken for its own.
bool walBelongsTo(const std::filesystem::path& file);

// The same of the journal, which SQLite writes over the file when it opens that. Throws StoreError when that
// cannot be found out.
bool journalBelongsTo(const std::filesystem::path& file);

// Throws StoreError when the journal is not the file's own.
void requireJournalBelongsTo(const std::filesystem::path& file);

} // namespace addressbook
