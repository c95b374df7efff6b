#include "frameworks/AddressBook/store/file/backup.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/replace_file.h"
#include "frameworks/AddressBook/store/file/staging.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/schema.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr std::chrono::seconds kBusyTimeout{10};
constexpr double kCopyShare = 0.5; // of the time; looking at the copy takes the other half

[[noreturn]] void fail(const fs::path& file, const std::string& what) {
    throw BackupError(file.string() + ": " + what);
}

// Checks that the copy in [staging] is a sound address book, and counts its records; throws BackupError with
// [remedy] when it is damaged. Opening it upgrades an older schema.
CopySummary inspect(const StagingFolder& staging, const fs::path& file, const char* remedy,
                    const Progress& progress) {
    std::string problem;
    try {
        const Store store(staging.folder());
        const auto problems = store.check(Store::Depth::records, share(progress, kCopyShare, 1));
        if (problems.empty()) {
            return {store.count(Kind::person), store.count(Kind::group), {}};
        }
        problem = problems.front();
    } catch (const StoreError& error) {
        if (error.reason() != Reason::damaged && error.reason() != Reason::notADatabase) {
            throw;
        }
        problem = error.what();
    }
    const std::string draft = staging.file().string();
    for (std::size_t at; (at = problem.find(draft)) != std::string::npos;) {
        problem.replace(at, draft.size(), file.string());
    }
    fail(file, std::string("it is damaged and was not copied: ") + remedy + " (" + problem + ")");
}

// Makes the database a single file without sidecars, and writes it through to the disk.
void makeStandalone(const fs::path& file) {
    {
        sql::Connection connection(file, databaseUri(file), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                                   kBusyTimeout);
        connection.execute("PRAGMA journal_mode = DELETE");
    }
    if (!syncFile(file)) {
        fail(file, "cannot write: " + std::generic_category().message(errno));
    }
}

// Gives the finished [draft] the name [file].
void publish(const fs::path& draft, const fs::path& file, Existing existing) {
    if (existing == Existing::replace) {
        if (std::rename(draft.c_str(), file.c_str()) != 0) {
            fail(file, "cannot write: " + std::generic_category().message(errno));
        }
    } else if (renameat2(AT_FDCWD, draft.c_str(), AT_FDCWD, file.c_str(), RENAME_NOREPLACE) != 0) {
        // EINVAL: the file system cannot rename without replacing. There was no such file a moment ago.
        if (errno != EINVAL || std::rename(draft.c_str(), file.c_str()) != 0) {
            fail(file, errno == EEXIST ? "there is such a file; --force replaces it"
                                       : "cannot write: " + std::generic_category().message(errno));
        }
    }
    syncFolder(folderOf(file));
}

bool isOpenBook(const fs::path& book, const fs::path& file) {
    std::error_code error;
    return fs::equivalent(book, file, error);
}

} // namespace

CopySummary backUp(const fs::path& folder, const fs::path& file, Existing existing,
                   const Progress& progress) {
    const Store::Impl book(folder, Store::Access::readOnly, kBusyTimeout);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(file, error);
    if (isOpenBook(book.db.file(), file)) {
        fail(file, "this is the address book itself; name another file");
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        fail(file, "this is no ordinary file; name another");
    }
    if (fs::exists(status) && existing == Existing::refuse) {
        fail(file, "there is such a file; --force replaces it");
    }
    if (!fs::is_directory(folderOf(file), error)) {
        fail(file, "its folder does not exist; make it, or name another file");
    }
    const StagingFolder staging(folderOf(file));
    copyDatabase(book.db, staging.file(), share(progress, 0, kCopyShare));
    CopySummary summary =
        inspect(staging, book.db.file(), "addressbook repair rescues what can be read", progress);
    makeStandalone(staging.file());
    publish(staging.file(), file, existing);
    return summary;
}

CopySummary restore(const fs::path& folder, const fs::path& file, const Progress& progress) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        fail(file, "there is no such file");
    }
    if (!fs::is_regular_file(status) || fs::file_size(file, error) == 0) {
        fail(file, "this is no backup of an address book");
    }
    if (isOpenBook(folder / kFileName, file)) {
        fail(file, "this is the address book itself; name its backup");
    }
    requireFolder(folder, Access::readWrite);
    const StagingFolder staging(folder);
    try {
        // Without a log the file is complete. "immutable" then reads it where nothing can be written, and
        // makes no sidecars.
        const bool alone = !fs::exists(file.string() + "-wal");
        sql::Connection backup(file, databaseUri(file, alone ? "?immutable=1" : ""),
                               SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, kBusyTimeout);
        if (schemaVersion(backup) > static_cast<int>(migrations().size())) {
            fail(file, "it was written by a newer version; install that to restore it");
        }
        copyDatabase(backup, staging.file(), share(progress, 0, kCopyShare));
    } catch (const StoreError& problem) {
        if (problem.reason() == Reason::full) {
            throw;
        }
        throw BackupError(problem.what());
    }
    CopySummary summary = inspect(staging, file, "restore another backup", progress);
    LockedBook book(folder);
    summary.kept = book.replaceWith(staging.file());
    return summary;
}

} // namespace addressbook
