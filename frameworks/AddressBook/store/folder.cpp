#include "folder.h"

#include "schema.h"

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

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;
constexpr int kAttempts = 3;                   // at opening a file that others replace
constexpr std::string_view kBookMark = "book"; // in sqlite_sequence, which every save writes; no table of it
constexpr int kCacheKilobytes = 16 * 1024;

// The value of an environment variable; null when it is unset or empty.
const char* environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

void makeFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), kFolderMode) != 0 && errno != EEXIST)
        throw systemError("Could not make the address book's folder", folder, errno,
                          "make it, or choose another place in ADDRESSBOOK_HOME");
}

void makeFolderAndParents(const fs::path& folder) {
    if (folder.empty() || fs::exists(folder))
        return;
    makeFolderAndParents(folder.parent_path());
    makeFolder(folder);
}

// Answers whether the folder is there, having made it when it may.
bool hasFolder(const fs::path& folder, bool mayMake) {
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (fs::is_directory(status))
        return true;
    if (fs::exists(status))
        throw StoreError(Reason::missingFolder,
                         "The address book's folder " + folder.string() + " is a file: name a folder.");
    const char* home = environment("ADDRESSBOOK_HOME");
    if (!mayMake || (home != nullptr && folder == fs::path(home)))
        return false;
    if (home == nullptr && folder == Store::defaultFolder()) {
        makeFolderAndParents(folder);
        return true;
    }
    if (folder.has_parent_path() && !fs::is_directory(folder.parent_path(), error))
        return false;
    makeFolder(folder);
    return true;
}

void requireFolder(const fs::path& folder, bool mayMake) {
    if (!hasFolder(folder, mayMake))
        throw StoreError(Reason::missingFolder, "The address book's folder " + folder.string() +
                                                    " does not exist: make it, or correct ADDRESSBOOK_HOME.");
}

// Whether the last connection that closes leaves the log as it is.
void keepLogAtClose(const sql::Connection& connection, bool keep) {
    sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keep ? 1 : 0, nullptr);
}

std::unique_ptr<sql::Connection> connect(const fs::path& file, const char* query, int flags,
                                         std::chrono::milliseconds patience) {
    auto connection =
        std::make_unique<sql::Connection>(file, databaseUri(file, query), flags | SQLITE_OPEN_URI, patience);
    keepLogAtClose(*connection, true);
    connection->execute(
        "PRAGMA trusted_schema = OFF; PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY;"
        "PRAGMA synchronous = FULL; PRAGMA cache_size = -" +
        std::to_string(kCacheKilobytes));
    return connection;
}

// Makes an empty address book beside its place and gives it its name only when it is whole: a file of that
// name is never half-made, whatever ends this process, and of two processes at this the second finds the
// first one's file.
void makeFile(const fs::path& file, std::chrono::milliseconds patience) {
    fs::path draft = file;
    draft += "." + newUuid() + ".new";
    const int descriptor = open(draft.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    if (descriptor < 0)
        throw systemError("Could not make the address book", file, errno,
                          "make its folder writable, or choose another place in ADDRESSBOOK_HOME");
    close(descriptor);
    struct Remover {
        const fs::path& path;
        ~Remover() {
            std::error_code ignored;
            fs::remove(path, ignored);
        }
    } const remover{draft};
    {
        sql::Connection connection(file, databaseUri(draft, ""), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                                   patience);
        connection.execute("PRAGMA synchronous = FULL; PRAGMA journal_mode = WAL");
        migrate(connection);
        connection.run("INSERT INTO sqlite_sequence(name, seq) VALUES (?, random())")
            .bindText(kBookMark)
            .finish();
    }
    if (link(draft.c_str(), file.c_str()) != 0 && errno != EEXIST) {
        // A file system without links: the name is free unless another process was faster by a hair.
        if (fs::exists(file))
            return;
        std::error_code error;
        fs::rename(draft, file, error);
        if (error)
            throw systemError("Could not make the address book", file, error.value(), "check its folder");
    }
    syncFolder(file.parent_path());
}

// A database in WAL mode needs a file beside it even to be read. Where none can be made and no saved changes
// wait in the log, the file alone is the whole truth and nobody can be writing it.
std::unique_ptr<sql::Connection> connectReadOnly(const fs::path& file, std::chrono::milliseconds patience) {
    try {
        auto connection = connect(file, "", SQLITE_OPEN_READONLY, patience);
        schemaVersion(*connection);
        return connection;
    } catch (const StoreError& error) {
        if (error.reason() != Reason::io && error.reason() != Reason::readOnly)
            throw;
        fs::path log = file;
        log += "-wal";
        std::error_code ignored;
        if (fs::exists(log, ignored) && fs::file_size(log, ignored) != 0)
            throw;
    }
    return connect(file, "?immutable=1", SQLITE_OPEN_READONLY, patience);
}

bool isWritable(const fs::path& file) {
    return access(file.c_str(), R_OK | W_OK) == 0 && access(file.parent_path().c_str(), W_OK | X_OK) == 0;
}

void checkVersion(sql::Connection& connection) {
    const auto current = static_cast<int>(migrations().size());
    if (schemaVersion(connection) < current)
        throw StoreError(Reason::readOnly,
                         "The address book " + connection.file().string() +
                             " is of an older version and may not be written: open it once where it "
                             "may be written.");
    migrate(connection); // nothing to do, or the error about a newer version
}

// What every save writes on one page of the database: a number that is this book's own, 0 in an old one, and
// how many saves there were.
struct Mark {
    std::int64_t book = 0, saves = 0;
};

Mark markOf(sql::Connection& connection) {
    Mark mark;
    auto run = connection.run("SELECT name, seq FROM sqlite_sequence");
    while (run.step()) {
        if (run.text(0) == "change")
            mark.saves = run.integer(1);
        else if (run.text(0) == kBookMark)
            mark.book = run.integer(1);
    }
    return mark;
}

// The mark in the file alone; nothing when no log is there, or it cannot be read.
std::optional<Mark> markWithoutLog(const fs::path& file) {
    std::error_code error;
    if (const auto size = fs::file_size(file.string() + "-wal", error); error || size == 0)
        return std::nullopt;
    try {
        sql::Connection alone(file, databaseUri(file, "?immutable=1"), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                              std::chrono::milliseconds(0));
        return markOf(alone);
    } catch (const StoreError&) {
        return std::nullopt; // another process is just writing there, or what follows will say what is wrong
    }
}

bool isOwnLog(sql::Connection& connection, const Mark& alone) {
    const Mark now = markOf(connection); // no earlier than the other
    return now.book == alone.book && now.saves >= alone.saves;
}

// Opens a file by [open] and refuses a log that is not the file's own, before anything of it gets into the
// file.
std::unique_ptr<sql::Connection> withOwnLog(const fs::path& file,
                                            const std::function<std::unique_ptr<sql::Connection>()>& open) {
    const auto alone = markWithoutLog(file);
    bool own = true;
    try {
        auto connection = open();
        own = !alone || isOwnLog(*connection, *alone) || connection->moved();
        if (own) {
            keepLogAtClose(*connection, false);
            return connection;
        }
    } catch (const StoreError& error) {
        if (!alone || error.reason() != Reason::damaged)
            throw;
    }
    throw StoreError(Reason::damaged,
                     "The address book " + file.string() + " is damaged (the log beside it, " +
                         file.filename().string() +
                         "-wal, belongs to another file or to an older state): repair it, or "
                         "restore it from a backup.");
}

// Files get their name when they are whole: one without tables has lost them.
void requireTables(sql::Connection& connection) {
    if (schemaVersion(connection) == 0)
        throw StoreError(Reason::notADatabase, "The address book " + connection.file().string() +
                                                   " is an empty database: restore it from a backup, or move "
                                                   "it away to begin a new one.");
}

OpenedFile openFile(const fs::path& file, bool wantsWrite, std::chrono::milliseconds patience) {
    if (wantsWrite && isWritable(file)) {
        auto connection =
            withOwnLog(file, [&] { return connect(file, "", SQLITE_OPEN_READWRITE, patience); });
        requireTables(*connection);
        migrate(*connection);
        connection->execute("PRAGMA journal_mode = WAL; PRAGMA journal_size_limit = 4194304");
        return {std::move(connection), false};
    }
    // Who only reads spoils nothing, and need not look again at what others have open.
    auto connection = fs::exists(file.string() + "-shm")
                          ? connectReadOnly(file, patience)
                          : withOwnLog(file, [&] { return connectReadOnly(file, patience); });
    keepLogAtClose(*connection, false);
    requireTables(*connection);
    checkVersion(*connection);
    return {std::move(connection), true};
}

} // namespace

StoreError systemError(const std::string& sentence, const fs::path& path, int error, const char* remedy) {
    const bool denied = error == EACCES || error == EPERM || error == EROFS;
    const Reason reason = denied                               ? Reason::readOnly
                          : error == ENOSPC || error == EDQUOT ? Reason::full
                                                               : Reason::io;
    return {reason, sentence + " " + path.string() + " (" + std::generic_category().message(error) +
                        "): " + remedy + "."};
}

std::string databaseUri(const fs::path& file, const char* query) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : fs::absolute(file).string()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '?' || c == '#' || c == '%') {
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
        } else {
            uri += c;
        }
    }
    return uri + query;
}

void syncFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

void prepareFolder(const fs::path& folder) {
    requireFolder(folder, true);
}

bool hasOwnLog(const fs::path& file) {
    try {
        withOwnLog(file, [&] { return connect(file, "", SQLITE_OPEN_READONLY, std::chrono::seconds(10)); });
        return true;
    } catch (const StoreError& error) {
        return error.reason() != Reason::damaged || !markWithoutLog(file);
    }
}

void makePrivateFile(const fs::path& file) {
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    if (descriptor < 0)
        throw systemError("Could not make the file", file, errno, "make its folder writable");
    close(descriptor);
}

fs::path Store::defaultFolder() {
    if (const char* home = environment("ADDRESSBOOK_HOME"))
        return home;
    if (const char* data = environment("XDG_DATA_HOME"))
        return fs::path(data) / "AddressBook";
    const char* home = environment("HOME");
    return fs::path(home != nullptr ? home : "/") / ".local/share/AddressBook";
}

OpenedFile openAddressBook(const fs::path& folder, Store::Access mode, std::chrono::milliseconds patience) {
    const bool wantsWrite = mode == Store::Access::readWrite;
    requireFolder(folder, wantsWrite);
    const fs::path file = folder / kFileName;
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        if (status.type() != fs::file_type::not_found)
            throw systemError("Could not look for the address book", file, error.value(),
                              "check that you may enter its folder");
        if (!wantsWrite)
            throw StoreError(Reason::missingFolder,
                             "There is no address book in " + folder.string() +
                                 ": import something first, or correct ADDRESSBOOK_HOME.");
        makeFile(file, patience);
    } else if (!fs::is_regular_file(status) || fs::file_size(file, error) == 0) {
        throw StoreError(Reason::notADatabase,
                         "The address book " + file.string() +
                             (fs::is_regular_file(status) ? " is an empty file" : " is no file") +
                             ": restore it from a backup, or move it away to begin a new one.");
    }
    // A file that was replaced just when it was being opened is not the book any more.
    for (int attempt = 0; attempt < kAttempts; ++attempt)
        if (OpenedFile opened = openFile(file, wantsWrite, patience); !opened.connection->moved())
            return opened;
    throw StoreError(Reason::io, "The address book " + file.string() +
                                     " was replaced while it was being opened: try again.");
}

} // namespace addressbook
