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

// A unique id as the database keeps it.
class StoredUid {
  public:
    explicit StoredUid(std::string_view uid);
    // Binds it as the next parameter; this object must outlive the run.
    void bind(sql::Statement& statement) const;

  private:
    std::string stored_;
    bool packed_;
};

// What marks the saves of this process in the change log: random bytes, others in a child that was forked.
std::string processMark();

struct Store::Impl {
    Impl(const std::filesystem::path& folder, Access access, std::chrono::milliseconds busyTimeout);

    OpenedFile opened;
    sql::Connection& db;
    int readTransactions = 0; // Store::Readings that live, in one transaction
    std::optional<sql::Transaction> readTransaction;
    // Numbers of property names that this connection has met.
    std::unordered_map<std::string, std::int64_t> propertyIds[2];
    Backlog knownBacklog;
    std::optional<std::uint32_t> backlogVersion; // the state of the database in which it was read

    // Opens files that are read as they were again when they have changed; nothing while a Reading lives.
    void reopenIfChanged();

    // The number of a property, none when no record ever had it.
    std::optional<std::int64_t> propertyId(Kind kind, std::string_view name);
    // The same, giving it a number when it has none; inside a write transaction.
    std::int64_t ensureProperty(Kind kind, std::string_view name);

    // The name that has this number; empty when there is none.
    std::string propertyName(std::int64_t id);

    // What the search indexes do not know yet, as of the transaction that is open.
    const Backlog& backlog();

    // A record's row.
    std::optional<RecordRow> record(RowId id);
    std::optional<RecordRow> record(std::string_view uid);

    // One property of a record but the picture; no value when the record does not exist.
    Value value(RowId id, std::string_view property);
    // The value that a row holds of any property but the picture.
    Value valueOf(const RecordRow& row, std::string_view property) const;
    // The same as its bytes in the card, empty for no value; not for the id and the dates, which are not in
    // it. Throws DamagedRecord.
    std::string_view encodedIn(const RecordRow& row, std::string_view property) const;
    // The row that a run over (id, kind, uid, creation, modification, card) stands on.
    RecordRow rowFrom(const sql::Statement& statement) const;
    // The values of the card alone.
    std::map<std::string, Value> decodeProperties(const RecordRow& row) const;

    // The unique id and the kind in a column.
    std::string uidIn(const sql::Statement& statement, int column) const;
    Kind kindIn(const sql::Statement& statement, int column) const;

    // Makes the search indexes again from the records, in one transaction.
    void rebuildIndexes();

    // Reports that what the database holds makes no sense.
    [[noreturn]] void reportDamage(const std::string& what) const;
    [[noreturn]] void reportDamage(RowId row, const std::string& what) const;
};

} // namespace addressbook
