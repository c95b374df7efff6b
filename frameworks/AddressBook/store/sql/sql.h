#pragma once

// A thin, owning layer over SQLite: connections, statements that are prepared once, transactions. Every
// failure leaves here as a StoreError that names the database file.

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

// One use of a prepared statement: bind, step, read columns. The destructor resets it and clears what was
// bound. Bound text and blobs are not copied: they must live as long as this. Columns live until the next
// step.
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
    // Steps to the end, whether there are rows or none. Throws StoreError.
    void exec();
    // Makes the statement ready to run again with other values, all of which must be bound.
    void reset();

    // The type and the value of a column of the row that was stepped to, counted from 0.
    bool isNull(int column) const;
    bool isText(int column) const;
    bool isReal(int column) const;
    bool isNumber(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string_view text(int column) const;
    std::string_view blob(int column) const;

  private:
    Connection& connection_;
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

// One connection to a database file.
class Connection {
  public:
    // Opens [uri] with SQLite's [flags]; errors name [file]. Waits for other connections' locks up to
    // [busyTimeout]. Throws StoreError.
    Connection(std::filesystem::path file, const std::string& uri, int flags,
               std::chrono::milliseconds busyTimeout);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const std::filesystem::path& file() const { return file_; }
    sqlite3* handle() const { return handle_; }

    // Exchanges the open databases of both. No statement may be in use in either.
    void exchange(Connection& other);

    // Runs statements that have no parameters and whose rows do not matter. Throws StoreError.
    void execute(const std::string& statements);

    // Returns a statement that is prepared at its first use and kept; [sql] is a literal and known by its
    // address.
    Statement prepare(const char* sql);
    // Returns a statement whose text is put together at run time; kept as well.
    Statement prepareText(const std::string& sql);

    // Return the rowid of the last insertion, and how many rows the last statement changed.
    std::int64_t lastRow() const;
    int changes() const;

    // Returns SQLite's data version, which changes with every commit here or elsewhere. Opens a read
    // transaction if there is none, so that it stays valid.
    std::uint32_t dataVersion();

    // Whether the file that is open is no longer the one of its name.
    bool moved() const;

    // Throws what an SQLite result code means for this file.
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

// A transaction that is undone unless it is committed.
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
