#include "frameworks/AddressBook/store/sql/sql.h"

#include <sqlite3.h>

#include <algorithm>
#include <random>
#include <thread>

namespace addressbook::sql {
namespace {

using Reason = StoreError::Reason;

struct Failure {
    Reason reason;
    const char* what;   // follows "The address book [file] "
    const char* remedy; // the second half of the sentence
};

Failure failureOf(int code) {
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {Reason::locked, "is locked by another program",
                "wait until that program is done or end it, then try again"};
    case SQLITE_NOTADB:
        return {Reason::notADatabase, "is no address book", "move it away or choose another folder"};
    case SQLITE_CORRUPT:
    case SQLITE_ERROR: // a table or a column is missing: all SQL here is known to be good
        return {Reason::damaged, "is damaged", "check it, or restore it from a backup"};
    case SQLITE_FULL:
        return {Reason::full, "could not be written because the disk is full",
                "free some space and try again"};
    case SQLITE_READONLY:
        return {Reason::readOnly, "cannot be written", "make the file and its folder writable and try again"};
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return {Reason::io, "cannot be opened", "check that you may read and write the file and its folder"};
    case SQLITE_TOOBIG:
        return {Reason::refused, "cannot keep a value of this size", "use a smaller one"};
    case SQLITE_NOMEM:
        return {Reason::memory, "could not be used because memory ran out",
                "close other programs and try again"};
    case SQLITE_INTERRUPT:
        return {Reason::io, "was interrupted at its work", "try again"};
    default:
        return {Reason::io, "could not be read or written", "check the disk and try again"};
    }
}

} // namespace

Statement::~Statement() {
    if (statement_ != nullptr) {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
}

Statement& Statement::bindInteger(std::int64_t value) {
    return bound(sqlite3_bind_int64(statement_, ++bound_, value));
}

Statement& Statement::bindReal(double value) {
    return bound(sqlite3_bind_double(statement_, ++bound_, value));
}

Statement& Statement::bindText(std::string_view value) {
    const char* data = value.data() != nullptr ? value.data() : "";
    return bound(sqlite3_bind_text64(statement_, ++bound_, data, value.size(), SQLITE_STATIC, SQLITE_UTF8));
}

Statement& Statement::bindBlob(std::string_view value) {
    const char* data = value.data() != nullptr ? value.data() : "";
    return bound(sqlite3_bind_blob64(statement_, ++bound_, data, value.size(), SQLITE_STATIC));
}

Statement& Statement::bound(int code) {
    if (code != SQLITE_OK) {
        connection_.fail(code);
    }
    return *this;
}

bool Statement::step() {
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        connection_.fail(code);
    }
    return code == SQLITE_ROW;
}

void Statement::exec() {
    while (step()) {
    }
}

std::int64_t Statement::firstNumber() {
    return step() ? integer(0) : 0;
}

void Statement::reset() {
    sqlite3_reset(statement_);
    bound_ = 0;
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}
bool Statement::isText(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_TEXT;
}
bool Statement::isReal(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_FLOAT;
}
bool Statement::isNumber(int column) const {
    const int type = sqlite3_column_type(statement_, column);
    return type == SQLITE_FLOAT || type == SQLITE_INTEGER;
}
std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}
double Statement::real(int column) const {
    return sqlite3_column_double(statement_, column);
}
std::string_view Statement::text(int column) const {
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {data != nullptr ? data : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}
std::string_view Statement::blob(int column) const {
    const auto* data = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    return {data != nullptr ? data : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

Connection::Connection(std::filesystem::path file, const std::string& uri, int flags,
                       std::chrono::milliseconds busyTimeout)
    : file_(std::move(file)), busyTimeout_(busyTimeout) {
    const int code =
        sqlite3_open_v2(uri.c_str(), &handle_, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    if (code != SQLITE_OK) {
        sqlite3_close(std::exchange(handle_, nullptr));
        fail(code);
    }
    sqlite3_busy_handler(handle_, &waitForLock, this);
}

// SQLite's busy handler, called between two attempts at a lock: waits a little and returns whether to try
// again. The pauses stay short and vary, so that several processes which save all the time take turns. Those
// of SQLite's own handler grow to 100 ms, and a process that waits so long loses to others again and again.
int Connection::waitForLock(void* connection, int attempt) {
    auto& self = *static_cast<Connection*>(connection);
    const auto now = std::chrono::steady_clock::now();
    if (attempt == 0) {
        self.waitsSince_ = now;
    }
    if (now - self.waitsSince_ >= self.busyTimeout_) {
        return 0;
    }
    thread_local std::minstd_rand random{std::random_device{}()};
    const std::uint_fast32_t longest = 1000 + 500 * static_cast<std::uint_fast32_t>(std::min(attempt, 8));
    std::this_thread::sleep_for(std::chrono::microseconds(200 + random() % longest));
    return 1;
}

Connection::~Connection() {
    for (const auto& [sql, statement] : literals_) {
        sqlite3_finalize(statement);
    }
    for (const auto& [sql, statement] : texts_) {
        sqlite3_finalize(statement);
    }
    sqlite3_close(handle_);
}

void Connection::exchange(Connection& other) {
    std::swap(file_, other.file_);
    std::swap(busyTimeout_, other.busyTimeout_);
    std::swap(handle_, other.handle_);
    std::swap(literals_, other.literals_);
    std::swap(texts_, other.texts_);
    for (Connection* one : {this, &other}) {
        sqlite3_busy_handler(one->handle_, &waitForLock, one);
    }
}

void Connection::execute(const std::string& statements) {
    if (const int code = sqlite3_exec(handle_, statements.c_str(), nullptr, nullptr, nullptr);
        code != SQLITE_OK) {
        fail(code);
    }
}

Statement Connection::prepare(const char* sql) {
    sqlite3_stmt*& statement = literals_[sql];
    if (statement == nullptr) {
        statement = compile(sql);
    }
    return {*this, statement};
}

Statement Connection::prepareText(const std::string& sql) {
    sqlite3_stmt*& statement = texts_[sql];
    if (statement == nullptr) {
        statement = compile(sql);
    }
    return {*this, statement};
}

std::int64_t Connection::lastRow() const {
    return sqlite3_last_insert_rowid(handle_);
}

int Connection::changes() const {
    return sqlite3_changes(handle_);
}

std::uint32_t Connection::dataVersion() {
    if (sqlite3_txn_state(handle_, "main") == SQLITE_TXN_NONE) {
        prepare("PRAGMA schema_version").step(); // begins to read; the least that does
    }
    std::uint32_t version = 0;
    if (const int code = sqlite3_file_control(handle_, "main", SQLITE_FCNTL_DATA_VERSION, &version);
        code != SQLITE_OK) {
        fail(code);
    }
    return version;
}

bool Connection::moved() const {
    int moved = 0;
    return sqlite3_file_control(handle_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

void Connection::fail(int code) const {
    const Failure failure = failureOf(code);
    std::string detail = sqlite3_errstr(code);
    if (handle_ != nullptr && sqlite3_extended_errcode(handle_) == code) {
        detail = sqlite3_errmsg(handle_);
    }
    throw StoreError(failure.reason, file_, std::string(failure.what) + " (" + detail + ")", failure.remedy);
}

sqlite3_stmt* Connection::compile(std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(handle_, sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) {
        fail(code);
    }
    return statement;
}

Transaction::Transaction(Connection& connection, Mode mode) : connection_(connection) {
    connection_.prepare(mode == Mode::write ? "BEGIN IMMEDIATE" : "BEGIN").exec();
}

Transaction::~Transaction() {
    // SQLite may have undone the transaction by itself, when a disk filled up for instance.
    if (open_ && sqlite3_get_autocommit(connection_.handle()) == 0) {
        sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::commit() {
    connection_.prepare("COMMIT").exec();
    open_ = false;
}

} // namespace addressbook::sql
