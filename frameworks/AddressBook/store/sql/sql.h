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

// One run of a prepared statement; its end makes the statement ready for the next. Bound text and bytes are
// not copied: they must live as long as the run. Columns live until the next step.
class Statement {
  public:
    Statement(Connection& connection, sqlite3_stmt* statement)
        : connection_(connection), statement_(statement) {}
    Statement(Statement&& other) noexcept
        : connection_(other.connection_), statement_(std::exchange(other.statement_, nullptr)) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    // Binds the next parameter.
    Statement& bindInteger(std::int64_t value);
    Statement& bindReal(double value); // NaN becomes null
    Statement& bindText(std::string_view value);
    Statement& bindBlob(std::string_view value);

    // Steps to the next row; false at the end.
    bool step();
    // Steps to the end, rows or none.
    void exec();
    // Makes the statement ready for another run with other values, all of which must be bound.
    void reset();

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
    // [uri] is what SQLite opens, [file] what errors name; [flags] are SQLite's. Waits for locks up to
    // [busyTimeout].
    Connection(std::filesystem::path file, const std::string& uri, int flags,
               std::chrono::milliseconds busyTimeout);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const std::filesystem::path& file() const { return file_; }
    sqlite3* handle() const { return handle_; }

    // Takes the database that the other has open, and leaves it its own. No run may be under way in either.
    void exchange(Connection& other);

    // Runs statements that have no parameters and whose rows do not matter.
    void execute(const std::string& statements);

    // A run of a statement that is prepared at its first use and kept; [sql] is a literal and known by its
    // address.
    Statement prepare(const char* sql);
    // A run of a statement whose text is put together at run time; kept as well.
    Statement prepareText(const std::string& sql);

    std::int64_t lastRow() const;
    int changes() const;

    // A number that changes whenever the database does, here or elsewhere; inside a transaction, which keeps
    // it.
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
