#pragma once

// A thin, owning layer over SQLite: connections, statements that are prepared once, transactions. Every
// failure is thrown as a StoreError that names the database file. A connection and its statements are used by
// one thread at a time.

#include "frameworks/AddressBook/store/sql/store_error.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace addressbook::sql {

class Connection;

// One use of a prepared statement: bind, step, read columns. The destructor resets the statement and clears
// what was bound. Bound text and blobs are not copied: they must outlive this object. The text or blob of a
// column is valid until the next step.
class Statement {
  public:
    Statement(Connection& connection, sqlite3_stmt* statement)
        : connection_(connection), statement_(statement) {}
    Statement(Statement&& other) noexcept
        : connection_(other.connection_), statement_(std::exchange(other.statement_, nullptr)) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    // Bind the next parameter. Each throws StoreError.
    Statement& bindInteger(std::int64_t value);
    Statement& bindReal(double value); // NaN becomes null
    Statement& bindText(std::string_view value);
    Statement& bindBlob(std::string_view value);

    // Steps to the next row; returns false at the end. Throws StoreError.
    bool step();
    // Runs the statement to its end and ignores its rows. Throws StoreError.
    void exec();
    // Returns the number in the first column of the first row; 0 when there is no row. Throws StoreError.
    std::int64_t firstNumber();
    // Makes the statement ready to run again; all its parameters must be bound anew.
    void reset();

    // Return the type and the value of a column, counted from 0, of the current row.
    bool isNull(int column) const;
    bool isText(int column) const;
    bool isReal(int column) const;
    bool isNumber(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string_view text(int column) const;
    std::string_view blob(int column) const;

  private:
    Statement& bound(int code); // the result of binding

    Connection& connection_;
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

// One connection to a database file.
class Connection {
  public:
    // Opens [uri] with SQLite's [flags]; errors name [file]. Waits up to [busyTimeout] for each lock that
    // another connection holds. Throws StoreError.
    Connection(std::filesystem::path file, const std::string& uri, int flags,
               std::chrono::milliseconds busyTimeout);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const std::filesystem::path& file() const { return file_; }
    sqlite3* handle() const { return handle_; }

    // Swaps the open databases of two connections. No statement of either may be in use.
    void exchange(Connection& other);

    // Runs statements that have no parameters and whose rows do not matter. Throws StoreError.
    void execute(const std::string& statements);

    // Returns a statement, which is compiled once and then cached by the address of [sql], which must be a
    // literal. Throws StoreError.
    Statement prepare(const char* sql);
    // Returns a statement for a text that is made at run time; cached by its text. Throws StoreError.
    Statement prepareText(const std::string& sql);

    // Return the rowid of the last insertion, and the number of rows that the last statement changed.
    std::int64_t lastRow() const;
    int changes() const;

    // Returns SQLite's data version, a number that changes with every commit of this or another connection.
    // To be called inside a transaction, in which the number stays valid; reads something first, so that the
    // transaction has begun. Throws StoreError.
    std::uint32_t dataVersion();

    // Whether the open file is no longer the one at its path: it was removed or replaced.
    bool moved() const;

    // Throws the StoreError for an SQLite result code.
    [[noreturn]] void fail(int code) const;

  private:
    sqlite3_stmt* compile(std::string_view sql);
    static int waitForLock(void* connection, int attempt);

    std::filesystem::path file_;
    std::chrono::milliseconds busyTimeout_;
    std::chrono::steady_clock::time_point waitsSince_;
    sqlite3* handle_ = nullptr;
    std::unordered_map<const char*, sqlite3_stmt*> literals_;
    std::unordered_map<std::string, sqlite3_stmt*> texts_;
};

// A transaction, which the destructor rolls back unless it was committed. A write transaction takes the write
// lock at once. The constructor and commit() throw StoreError.
class Transaction {
  public:
    enum class Mode { read, write };
    Transaction(Connection& connection, Mode mode);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

  private:
    Connection& connection_;
    bool open_ = true;
};

} // namespace addressbook::sql
