#include "frameworks/AddressBook/store/file/open_file.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/replace_file.h"
#include "frameworks/AddressBook/store/file/sidecars.h"
#include "frameworks/AddressBook/store/file/staging.h"
#include "frameworks/AddressBook/store/schema.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr int kAttempts = 3; // at opening a file that is replaced meanwhile
constexpr const char* kRestoreOrBegin = "restore it from a backup, or move it away to begin a new one";
constexpr int kCacheKilobytes = 16 * 1024;
// For a database with a log that nobody writes: no locks, and with the exclusive locking mode the index of
// the log is kept in memory instead of a file.
constexpr std::string_view kWithoutIndex = "?vfs=unix-none";

std::unique_ptr<sql::Connection> connect(const fs::path& file, std::string_view query, int flags,
                                         std::chrono::milliseconds busyTimeout) {
    auto connection = std::make_unique<sql::Connection>(file, databaseUri(file, query),
                                                        flags | SQLITE_OPEN_URI, busyTimeout);
    setWalAtClose(*connection, WalAtClose::keep);
    if (query == kWithoutIndex) {
        connection->execute("PRAGMA locking_mode = EXCLUSIVE");
    }
    connection->execute(
        "PRAGMA trusted_schema = OFF; PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY;"
        "PRAGMA synchronous = FULL; PRAGMA cache_size = -" +
        std::to_string(kCacheKilobytes));
    return connection;
}

// Makes an empty address book in a staging folder, and gives it its name when it is complete: there is never
// an incomplete file of that name, even when this process is killed, and of two processes that do this at
// once the second one finds the file of the first.
void makeFile(const fs::path& file, std::chrono::milliseconds busyTimeout) {
    const StagingFolder staging(file.parent_path());
    const fs::path draft = staging.file();
    makePrivateFile(draft);
    {
        sql::Connection connection(file, databaseUri(draft), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                                   busyTimeout);
        connection.execute("PRAGMA synchronous = FULL");
        migrate(connection);
        connection.prepare("INSERT INTO sqlite_sequence(name, seq) VALUES (?, random())")
            .bindText(kBookId)
            .exec();
        connection.execute("PRAGMA journal_mode = WAL"); // last, so that the log is empty
    }
    if (link(draft.c_str(), file.c_str()) != 0 && errno != EEXIST) {
        // The file system has no hard links, so that the name has to be looked for first.
        if (fs::exists(file)) {
            return;
        }
        std::error_code error;
        fs::rename(draft, file, error);
        if (error) {
            throw systemError("Could not make the address book", file, error.value(), "check its folder");
        }
    }
    syncFolder(file.parent_path());
}

// Throws StoreError when there is a log or journal without its database: it may hold saves, and does not
// belong to the file that would be made.
void requireNoSidecars(const fs::path& file) {
    for (const char* suffix : {"-wal", "-journal"}) {
        if (hasSidecar(file, suffix) && !fs::exists(file)) { // else another process has just made it
            throw StoreError(
                Reason::notADatabase, file,
                "is gone, but not " + sidecarPath(file, suffix).filename().string() + " beside it",
                "put the file back or restore it from a backup; to begin a new one, move what is left away");
        }
    }
}

// Opens a database to be read. In WAL mode that takes a file beside it (-shm). Where none can be made, no
// process of this machine has the database open, so its files are read without locks, with the index of the
// log in memory.
OpenedFile connectReadOnly(const fs::path& file, std::chrono::milliseconds busyTimeout) {
    const FileStamp stamp(file);
    try {
        auto connection = connect(file, "", SQLITE_OPEN_READONLY, busyTimeout);
        schemaVersion(*connection);
        return {std::move(connection), true, {}};
    } catch (const StoreError& error) {
        if (error.reason() != Reason::io && error.reason() != Reason::readOnly) {
            throw;
        }
        if (hasSidecar(file, "-journal")) {
            throw StoreError(Reason::readOnly, file,
                             "was left in the middle of a save and may not be written",
                             "open it once where it may be written");
        }
        const bool logged = hasSidecar(file, "-wal");
        if (logged && fs::exists(sidecarPath(file, "-shm"))) {
            throw;
        }
        return {connect(file, logged ? kWithoutIndex : "?immutable=1", SQLITE_OPEN_READONLY, busyTimeout),
                true, stamp};
    }
}

bool isWritable(const fs::path& file) {
    return ::access(file.c_str(), R_OK | W_OK) == 0 && ::access(file.parent_path().c_str(), W_OK | X_OK) == 0;
}

bool isOlder(sql::Connection& connection) {
    return schemaVersion(connection) < static_cast<int>(migrations().size());
}

void checkVersion(sql::Connection& connection) {
    if (isOlder(connection)) {
        throw StoreError(Reason::readOnly, connection.file(), "is of an older version and may not be written",
                         "open it once where it may be written");
    }
    migrate(connection); // nothing to do, or the error about a newer version
}

// Throws StoreError for a database without tables. As makeFile() names only complete files, it was emptied.
void requireTables(sql::Connection& connection) {
    if (schemaVersion(connection) == 0) {
        throw StoreError(Reason::notADatabase, connection.file(), "is an empty database", kRestoreOrBegin);
    }
}

OpenedFile openFile(const fs::path& file, Access access, std::chrono::milliseconds busyTimeout) {
    if (access == Access::readWrite && isWritable(file)) {
        requireJournalBelongsTo(file);
        auto connection =
            openWithCheckedWal(file, [&] { return connect(file, "", SQLITE_OPEN_READWRITE, busyTimeout); });
        requireTables(*connection);
        migrate(*connection);
        connection->execute("PRAGMA journal_mode = WAL; PRAGMA journal_size_limit = 4194304");
        return {std::move(connection), false, {}};
    }
    if (hasSidecar(file, "-journal") && isWritable(file)) {
        openFile(file, Access::readWrite, busyTimeout); // undoes the save that was interrupted
    }
    std::optional<FileStamp> stamp;
    auto connection = openWithCheckedWal(file, [&] {
        OpenedFile opened = connectReadOnly(file, busyTimeout);
        stamp = std::move(opened.stamp);
        return std::move(opened.connection);
    });
    requireTables(*connection);
    if (isOlder(*connection) && isWritable(file)) {
        connection.reset();
        openFile(file, Access::readWrite, busyTimeout); // brings it up to date
        return openFile(file, access, busyTimeout);
    }
    checkVersion(*connection);
    return {std::move(connection), true, std::move(stamp)};
}

} // namespace

OpenedFile openAddressBook(const fs::path& folder, Access access, std::chrono::milliseconds busyTimeout) {
    requireFolder(folder, access);
    const fs::path file = folder / kFileName;
    requireNoLinks(file);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        if (status.type() != fs::file_type::not_found) {
            throw systemError("Could not look for the address book", file, error.value(),
                              "check that you may enter its folder");
        }
        if (access == Access::readOnly) {
            throw StoreError(Reason::missingFolder,
                             problemSentence("There is no address book in", folder, "",
                                             "import something first, or correct ADDRESSBOOK_HOME"));
        }
        requireNoSidecars(file);
        makeFile(file, busyTimeout);
    } else if (!fs::is_regular_file(status) || fs::file_size(file, error) == 0) {
        throw StoreError(Reason::notADatabase, file,
                         fs::is_regular_file(status) ? "is an empty file" : "is no file", kRestoreOrBegin);
    }
    // Again when the file was replaced while it was being opened, or when that was interrupted.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        try {
            if (OpenedFile opened = openFile(file, access, busyTimeout); !opened.connection->moved()) {
                return opened;
            }
        } catch (const StoreError& problem) {
            // Where nothing is left, another process may just have finished it: then the next attempt succeeds.
            if (problem.reason() != Reason::damaged || (!finishReplacing(file) && attempt > 0)) {
                throw;
            }
        }
    }
    throw replacedError(file);
}

void requirePlaceForBook(const fs::path& folder) {
    requirePlace(folder);
    requireNoSidecars(folder / kFileName);
}

} // namespace addressbook
