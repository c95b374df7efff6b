#include "frameworks/AddressBook/store/file/sidecars.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/staging.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <type_traits>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr int kAttempts = 3; // at opening a file that is replaced meanwhile

// The sidecars with saves, and the names of the rows of `meta` that say how those of a replaced book began.
constexpr struct {
    const char* suffix;
    std::string_view name;
} kNoted[] = {{"-wal", "replaced-log"}, {"-journal", "replaced-journal"}};

// Returns the first bytes of a sidecar, which hold random numbers that no other has; empty when there are none.
std::string beginningOf(const fs::path& file, const char* suffix) {
    std::string bytes(32, '\0');
    std::ifstream in(sidecarPath(file, suffix), std::ios::binary);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

// Identifies the state of a database. Both numbers are on one page (sqlite_sequence), which every save
// writes: the book's random id, 0 in an old book, and the number of saves so far.
struct Mark {
    std::int64_t book = 0, saves = 0;
};

Mark markOf(sql::Connection& connection) {
    Mark mark;
    auto statement = connection.prepare("SELECT name, seq FROM sqlite_sequence");
    while (statement.step()) {
        if (statement.text(0) == "change") {
            mark.saves = statement.integer(1);
        } else if (statement.text(0) == kBookId) {
            mark.book = statement.integer(1);
        }
    }
    return mark;
}

// Returns what [read] finds in the database file without its sidecars; nothing when it cannot be read.
template <typename Read>
auto readAlone(const fs::path& file, Read read)
    -> std::optional<std::invoke_result_t<Read, sql::Connection&>> {
    try {
        sql::Connection alone(file, databaseUri(file, "?immutable=1"), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                              std::chrono::milliseconds(0));
        return read(alone);
    } catch (const StoreError&) {
        return std::nullopt; // another process is writing, or the file is damaged, which opening will report
    }
}

std::optional<Mark> markWithin(const fs::path& file) {
    return readAlone(file, markOf);
}

std::optional<Mark> markWithoutWal(const fs::path& file) {
    return hasSidecar(file, "-wal") ? markWithin(file) : std::nullopt;
}

bool isWalOf(sql::Connection& connection, const Mark& alone) {
    const Mark now = markOf(connection); // file and log together: no earlier than the file alone
    return now.book == alone.book && now.saves >= alone.saves;
}

[[noreturn]] void refuse(const fs::path& file, const char* what, const char* suffix) {
    throw StoreError(Reason::damaged, file,
                     std::string("is damaged (the ") + what + " beside it, " +
                         sidecarPath(file, suffix).filename().string() +
                         ", belongs to another file or to an older state)",
                     "repair it, or restore it from a backup");
}

// Returns the inode of the file; 0 when there is none.
ino_t identityOf(const fs::path& file) {
    struct stat status{};
    return stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

fs::path sidecarPath(fs::path file, const char* suffix) {
    file += suffix;
    return file;
}

bool hasSidecar(const fs::path& file, const char* suffix) {
    std::error_code error;
    const auto size = fs::file_size(sidecarPath(file, suffix), error);
    return !error && size != 0;
}

void requireNoLinks(const fs::path& file) {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        std::error_code error;
        const fs::path one = sidecarPath(file, suffix);
        if (fs::is_symlink(fs::symlink_status(one, error))) {
            throw StoreError(Reason::notADatabase,
                             problemSentence("The file", one,
                                             "is a symbolic link, which address books do not follow",
                                             "put the file itself there, or make the folder a link"));
        }
    }
}

void noteSidecars(sql::Connection& draft, const fs::path& file) {
    for (const auto& [suffix, name] : kNoted) {
        draft.prepare("INSERT OR REPLACE INTO meta(name, value) VALUES (?, ?)")
            .bindText(name)
            .bindBlob(beginningOf(file, suffix))
            .exec();
    }
}

bool isOfReplacedBook(const fs::path& file, const char* suffix) {
    const std::string beginning = beginningOf(file, suffix);
    if (beginning.empty()) {
        return false;
    }
    return readAlone(file,
                     [&](sql::Connection& alone) {
                         for (const auto& noted : kNoted) {
                             auto statement = alone.prepare("SELECT value FROM meta WHERE name = ?");
                             statement.bindText(noted.name);
                             if (suffix == std::string_view(noted.suffix) && statement.step()) {
                                 return statement.blob(0) == beginning;
                             }
                         }
                         return false;
                     })
        .value_or(false);
}

void setWalAtClose(const sql::Connection& connection, WalAtClose what) {
    sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, what == WalAtClose::keep ? 1 : 0,
                      nullptr);
}

std::unique_ptr<sql::Connection>
openWithCheckedWal(const fs::path& file, const std::function<std::unique_ptr<sql::Connection>()>& open) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const ino_t identity = identityOf(file);
        const auto alone = markWithoutWal(file);
        if (alone && isOfReplacedBook(file, "-wal")) {
            refuse(file, "log", "-wal");
        }
        try {
            auto connection = open();
            if (!alone || isWalOf(*connection, *alone)) {
                setWalAtClose(*connection, WalAtClose::checkpoint);
                return connection;
            }
        } catch (const StoreError& error) {
            if (!alone || error.reason() != Reason::damaged) {
                throw;
            }
        }
        if (identityOf(file) == identity) { // else the file was replaced after the mark was read
            refuse(file, "log", "-wal");
        }
    }
    throw replacedError(file);
}

bool walBelongsTo(const fs::path& file) {
    try {
        openWithCheckedWal(file, [&] {
            auto connection = std::make_unique<sql::Connection>(
                file, databaseUri(file), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, std::chrono::seconds(10));
            setWalAtClose(*connection, WalAtClose::keep);
            return connection;
        });
        return true;
    } catch (const StoreError& error) {
        return error.reason() != Reason::damaged || !markWithoutWal(file);
    }
}

bool journalBelongsTo(const fs::path& file) {
    if (!hasSidecar(file, "-journal")) {
        return true;
    }
    if (isOfReplacedBook(file, "-journal")) {
        return false;
    }
    const auto alone = markWithin(file);
    if (!alone) {
        return true; // the file may be half written by the interrupted save
    }
    const StagingFolder staging(file.parent_path());
    try {
        fs::copy_file(file, staging.file());
        fs::copy_file(sidecarPath(file, "-journal"), sidecarPath(staging.file(), "-journal"));
        sql::Connection undone(file, databaseUri(staging.file()), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                               std::chrono::milliseconds(0));
        const Mark then = markOf(undone);
        return then.book == alone->book && then.saves >= alone->saves - 1; // a journal undoes one save
    } catch (const fs::filesystem_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) {
            return true; // another process has just finished its save and removed the journal
        }
        throw systemError("Could not look at the journal of the address book", file, error.code().value(),
                          "make room in its folder and try again");
    } catch (const StoreError& error) {
        if (error.reason() != Reason::damaged && error.reason() != Reason::notADatabase) {
            throw;
        }
        return false;
    }
}

void requireJournalBelongsTo(const fs::path& file) {
    if (!journalBelongsTo(file)) {
        refuse(file, "journal", "-journal");
    }
}

} // namespace addressbook
