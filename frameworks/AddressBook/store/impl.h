#pragma once

// What the parts of Store share; included by its sources only.

#include "frameworks/AddressBook/store/backlog.h"
#include "frameworks/AddressBook/store/file/open_file.h"
#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/store/store.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace addressbook {

// A unique id as the database keeps it: packed where it can be.
class StoredUid {
  public:
    explicit StoredUid(std::string_view uid);
    // Binds it as the next parameter; this object must outlive the statement.
    void bind(sql::Statement& statement) const;

  private:
    std::string stored_;
    bool packed_;
};

// Returns what marks the saves of this process in the change log: a random UUID, another one in a forked
// child.
std::string processMark();

struct Store::Impl {
    Impl(const std::filesystem::path& folder, Access access, std::chrono::milliseconds busyTimeout);

    OpenedFile opened;
    sql::Connection& db;
    int readTransactions = 0; // Store::ReadTransactions that live, all in readTransaction
    std::optional<sql::Transaction> readTransaction;
    // Ids of property names that this connection has met, by Kind.
    std::unordered_map<std::string, std::int64_t> propertyIds[2];
    Backlog knownBacklog;
    std::optional<std::uint32_t> backlogVersion; // the data version in which knownBacklog was read

    // Opens files that are read without locks again when they have changed. Does nothing for others, and
    // while a ReadTransaction lives.
    void reopenIfChanged();

    // Returns the property's id, nothing when no record ever had it.
    std::optional<std::int64_t> propertyId(Kind kind, std::string_view name);
    // Returns the property's id, inserting it if absent. Requires a write transaction.
    std::int64_t ensureProperty(Kind kind, std::string_view name);

    // Returns the name that has this id; empty when there is none.
    std::string propertyName(std::int64_t id);

    // Returns what the search indexes do not know yet, as of the transaction that is open.
    const Backlog& backlog();

    // Return a record's row, nothing when there is none.
    std::optional<RecordRow> record(RowId id);
    std::optional<RecordRow> record(std::string_view uid);

    // Returns one property of a record but the picture; no value when the record does not exist.
    Value value(RowId id, std::string_view property);
    // Returns the value that a row holds of any property but the picture.
    Value valueOf(const RecordRow& row, std::string_view property) const;
    // Returns the bytes of that value, empty for no value. The id and the dates have none. Throws
    // DamagedRecord.
    std::string_view encodedIn(const RecordRow& row, std::string_view property) const;
    // Returns the row that a statement over (id, kind, uid, creation, modification, card) stands on.
    RecordRow rowFrom(const sql::Statement& statement) const;
    // Returns the values of the properties blob alone.
    std::map<std::string, Value> decodeProperties(const RecordRow& row) const;

    // Return the unique id and the kind in a column. Throw StoreError when there is none.
    std::string uidIn(const sql::Statement& statement, int column) const;
    Kind kindIn(const sql::Statement& statement, int column) const;

    // Makes the search indexes again from the records, in one transaction.
    void rebuildIndexes();

    // Throw StoreError: what the database, or one record of it, holds makes no sense.
    [[noreturn]] void reportDamage(const std::string& what) const;
    [[noreturn]] void reportDamage(RowId row, const std::string& what) const;
};

} // namespace addressbook
