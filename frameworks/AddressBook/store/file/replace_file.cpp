#include "frameworks/AddressBook/store/file/replace_file.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/sidecars.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <thread>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr std::chrono::seconds kBusyTimeout{10};
constexpr int kPagesAtOnce = 1024; // between two looks at how far a copy is
// The sidecars, which SQLite would take for those of the new database, and the files of the old book that are
// kept.
constexpr const char* kCompanions[] = {"-wal", "-journal", "-shm"};
constexpr const char* kKept[] = {"", "-wal", "-journal"};

// Locks the byte (SQLite's PENDING_BYTE) that every connection locks for a moment before it reads, so that no
// process can open the database while this object lives.
class PendingByteLock {
  public:
    explicit PendingByteLock(const fs::path& file) : descriptor_(open(file.c_str(), O_RDWR | O_CLOEXEC)) {
        constexpr off_t kPendingByte = 0x40000000;
        struct flock lock{};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        lock.l_start = kPendingByte;
        lock.l_len = 1;
        // Kept by this descriptor alone: a process loses other locks when it closes any descriptor of the file.
        if (descriptor_ < 0 || fcntl(descriptor_, F_OFD_SETLK, &lock) != 0 || fsync(descriptor_) != 0) {
            const int error = errno;
            close(descriptor_);
            throw systemError("Could not prepare the file", file, error, "check the disk and try again");
        }
    }
    ~PendingByteLock() { close(descriptor_); }
    PendingByteLock(const PendingByteLock&) = delete;
    PendingByteLock& operator=(const PendingByteLock&) = delete;

  private:
    int descriptor_;
};

// Gives the file a second [name], or makes a copy where the file system has no hard links. A missing file is
// ignored.
void keepCopy(const fs::path& file, const fs::path& name) {
    if (link(file.c_str(), name.c_str()) == 0 || errno == ENOENT) {
        return;
    }
    std::error_code error;
    fs::copy_file(file, name, error);
    if (!error && !syncFile(name)) { // the file itself is replaced next
        error = std::error_code(errno, std::generic_category());
    }
    if (error) {
        std::error_code ignored;
        fs::remove(name, ignored);
        throw systemError("Could not keep the present address book as", name, error.value(),
                          "make room in its folder and try again");
    }
}

// Returns an unused name beside the book, with date and time.
fs::path keptName(const fs::path& file) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d-%H%M%S", &local);
    const std::string stem = (file.parent_path() / file.stem()).string() + "-" + stamp;
    const std::string extension = file.extension().string();
    fs::path name = stem + extension;
    const auto taken = [&] {
        struct stat status{};
        for (const char* suffix : kKept) {
            if (lstat(sidecarPath(name, suffix).c_str(), &status) == 0) {
                return true;
            }
        }
        return false;
    };
    for (int number = 2; taken(); ++number) {
        name = fs::path(stem).concat("-").concat(std::to_string(number)).concat(extension);
    }
    return name;
}

} // namespace

void copyDatabase(sql::Connection& from, const fs::path& to, const Progress& progress) {
    // While it is read in one transaction, what is saved meanwhile does not begin it anew.
    const sql::Transaction oneMoment(from, sql::Transaction::Mode::read);
    from.prepare("SELECT count(*) FROM sqlite_schema").step();
    makePrivateFile(to);
    const sql::Connection copy(to, databaseUri(to), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, kBusyTimeout);
    sqlite3_backup* work = sqlite3_backup_init(copy.handle(), "main", from.handle(), "main");
    if (work == nullptr) {
        copy.fail(sqlite3_extended_errcode(copy.handle()));
    }
    try {
        while (sqlite3_backup_step(work, kPagesAtOnce) == SQLITE_OK) {
            const int all = std::max(sqlite3_backup_pagecount(work), 1);
            if (progress) {
                progress(1 - static_cast<double>(sqlite3_backup_remaining(work)) / all);
            }
        }
    } catch (...) {
        sqlite3_backup_finish(work);
        throw;
    }
    if (const int code = sqlite3_backup_finish(work); code != SQLITE_OK) {
        (code == SQLITE_FULL || (code & 0xFF) == SQLITE_IOERR ? copy : from).fail(code);
    }
}

bool finishReplacing(const fs::path& file) {
    const auto isLeft = [&](const char* suffix) { return isOfReplacedBook(file, suffix); };
    const auto deadline = std::chrono::steady_clock::now() + kBusyTimeout;
    bool found = false;
    while (isLeft("-wal") || isLeft("-journal")) {
        found = true;
        try {
            // Nobody can have opened the file with what is beside it, and nobody can open it now.
            const PendingByteLock lock(file);
            for (const char* suffix : {"-wal", "-journal"}) {
                const fs::path sidecar = sidecarPath(file, suffix);
                if (isLeft(suffix) && unlink(sidecar.c_str()) != 0) {
                    throw systemError("Could not remove the file", sidecar, errno,
                                      "check the disk and try again");
                }
            }
            unlink(sidecarPath(file, "-shm").c_str());
            syncFolder(file.parent_path());
            return true;
        } catch (const StoreError& error) {
            // Locked: another process is at it.
            if (error.reason() != Reason::locked || std::chrono::steady_clock::now() > deadline) {
                throw;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    return found;
}

LockedBook::LockedBook(const fs::path& folder) : file_(folder / kFileName) {
    requireNoLinks(file_);
    std::error_code error;
    if (!fs::is_regular_file(file_, error) || !journalBelongsTo(file_)) {
        return; // opening the book would write that journal over it
    }
    try {
        auto connection = std::make_unique<sql::Connection>(
            file_, databaseUri(file_), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, kBusyTimeout);
        // The log may belong to another file, and must then not be written into this one.
        setWalAtClose(*connection, WalAtClose::keep);
        connection->execute("BEGIN IMMEDIATE");
        connection_ = std::move(connection);
    } catch (const StoreError& failure) {
        if (failure.reason() == Reason::locked || failure.reason() == Reason::readOnly) {
            throw;
        }
    }
}

void LockedBook::checkpoint(const fs::path& draft) const {
    {
        sql::Connection connection(file_, databaseUri(draft), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                                   kBusyTimeout);
        connection.execute("PRAGMA synchronous = FULL");
        noteSidecars(connection, file_);
        connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    if (hasSidecar(draft, "-wal") || hasSidecar(draft, "-journal")) {
        throw StoreError(Reason::io, file_,
                         "was not replaced, for what is to replace it could not be written as a whole",
                         "check the disk and try again");
    }
}

fs::path LockedBook::replaceWith(const fs::path& draft) {
    fs::path kept;
    checkpoint(draft);
    const PendingByteLock lock(
        draft); // until the old log is removed, which SQLite would take for the new database's
    const fs::path name = keptName(file_);
    for (const char* suffix : kKept) { // a log without its database may be wanted as well
        if (hasSidecar(file_, suffix)) {
            keepCopy(sidecarPath(file_, suffix), sidecarPath(name, suffix));
            kept = name;
        }
    }
    if (std::rename(draft.c_str(), file_.c_str()) != 0) {
        throw systemError("Could not replace the address book", file_, errno, "check its folder");
    }
    for (const char* suffix : kCompanions) {
        unlink(sidecarPath(file_, suffix).c_str());
    }
    syncFolder(file_.parent_path());
    return kept;
}

} // namespace addressbook
