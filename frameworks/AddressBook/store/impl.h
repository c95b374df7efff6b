#pragma once

// Store's implementation, shared by its sources and included by nothing else.

#include "frameworks/AddressBook/store/backlog.h"
#include "frameworks/AddressBook/store/file/open_file.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/store/store.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace addressbook {

// Binds a unique id as the next parameter; it must outlive the statement.
void bindUid(sql::Statement& statement, const StoredUid& uid);

// Returns the mark of this process's saves in the change log: a random UUID, which is the same until the
// process ends and another one in a forked child. Thread-safe.
std::string processMark();

struct Store::Impl {
    Impl(const std::filesystem::path& folder, Access access, std::chrono::milliseconds busyTimeout);

    OpenedFile opened;
    sql::Connection& db;
    int readTransactions = 0; // how many Store::ReadTransaction objects live; all share readTransaction
    std::optional<sql::Transaction> readTransaction;
    // Ids of property names that this connection has looked up, by Kind.
    struct HashName {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };
    std::unordered_map<std::string, std::int64_t, HashName, std::equal_to<>> propertyIds[2];
    Backlog knownBacklog;
    std::optional<std::uint32_t> backlogVersion; // the data version in which knownBacklog was read

    // What the last search for a shared compound found, as of the data version: that search joined with one
    // more condition then costs no more than the condition.
    struct LastSearch {
        Query::Shared query;
        std::vector<RowId> rows;
        std::uint32_t dataVersion;
    };
    std::optional<LastSearch> lastSearch;

    // The newest save in the change log, as of the data version.
    struct KnownChange {
        std::int64_t number;
        std::uint32_t dataVersion;
    };
    std::optional<KnownChange> knownChange;

    // Returns what a query finds when that is what the last search found, else null. The result is valid
    // until the next search.
    const std::vector<RowId>* knownSearch(const Query& query);
    // Keeps what a query has found, if it will stay true as long as the book does.
    void keepSearch(const Query& query, const std::vector<RowId>& rows);

    // Opens the files again when they are read without locks and have changed. Does nothing for other files,
    // and while a ReadTransaction lives. Throws StoreError.
    void reopenIfChanged();

    // Returns the property's id; nothing when no record ever had the property.
    std::optional<std::int64_t> propertyId(Kind kind, std::string_view name);
    // Returns the property's id, inserting it if absent. Requires a write transaction.
    std::int64_t ensureProperty(Kind kind, std::string_view name);

    // Returns the name that has this id; empty when there is none.
    std::string propertyName(std::int64_t id);

    // Returns the backlog (see backlog.h) as of the open transaction; read again only when the database has
    // changed.
    const Backlog& backlog();

    // Return a record with its properties blob; nothing when there is none.
    std::optional<RecordRow> record(RowId id);
    std::optional<RecordRow> record(std::string_view uid);

    // Returns the value of a property of record [id], but not the picture; no value when there is no such
    // record.
    Value value(RowId id, std::string_view property);
    // Returns the value of a property of [row], but not the picture.
    Value valueOf(const RecordRow& row, std::string_view property) const;
    // Returns the encoded value of a property in the properties blob of [row]; empty when it is not there, as
    // for the unique id and the dates. Throws DamagedRecord.
    std::string_view encodedIn(const RecordRow& row, std::string_view property) const;
    // Returns the record in the current row of a statement whose columns are id, kind, uid, creation,
    // modification, card.
    RecordRow rowFrom(const sql::Statement& statement) const;
    // Returns the values in the properties blob of [row].
    std::map<std::string, Value> decodeProperties(const RecordRow& row) const;
    // Calls [visit] with the name and the encoded value of each property in the blob of [row]. Throws
    // StoreError (damaged), also for a DamagedRecord that [visit] throws.
    void visitValues(const RecordRow& row, const PropertyVisitor& visit) const;

    // Returns the bytes of a record's picture; nothing when there is none. Throws StoreError when they were changed by
    // accident.
    std::optional<Bytes> picture(RowId id);

    // Return the unique id and the kind in a column. Throw StoreError when the column holds something else.
    StoredUid uidIn(const sql::Statement& statement, int column) const;
    Kind kindIn(const sql::Statement& statement, int column) const;

    // Rebuilds the search indexes from the records, in one transaction.
    void rebuildIndexes();

    // Throw StoreError (damaged), saying [what] is wrong with the database or with one of its records.
    [[noreturn]] void reportDamage(const std::string& what) const;
    [[noreturn]] void reportDamage(RowId row, const std::string& what) const;
};

} // namespace addressbook
