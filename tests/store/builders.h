#pragma once

// Helper functions for the tests of the store.

#include "frameworks/AddressBook/store/store.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace addressbook::test {

using Values = std::map<std::string, Value>;

inline RecordChange inserted(const std::string& uid, Values values, Kind kind = Kind::person) {
    return {uid, kind, true, std::move(values)};
}
inline RecordChange updated(const std::string& uid, Values values, Kind kind = Kind::person) {
    return {uid, kind, false, std::move(values)};
}

inline ChangeSet changesAt(double seconds) {
    ChangeSet changes;
    changes.time = Date{seconds};
    return changes;
}

// Returns the SQL that turns a book without links to servers into one of an earlier schema version; the days of one
// before version 6 stay as they are.
inline std::string downgradeTo(int version) {
    static const std::pair<int, const char*> steps[] = {
        // a version, and what undoes it
        {8, "ALTER TABLE property DROP COLUMN endings;"},
        {7, "DROP TABLE account; DROP TABLE collection; DROP TABLE link; DROP TABLE conflict;"
            "ALTER TABLE change DROP COLUMN silent; ALTER TABLE picture DROP COLUMN checksum;"},
        {5, "DROP TABLE deleted;"},
        {3, "ALTER TABLE change DROP COLUMN replaced;"},
        {2, "ALTER TABLE change DROP COLUMN origin;"},
    };
    std::string sql;
    for (const auto& [made, undo] : steps) {
        if (made > version) {
            sql += undo;
        }
    }
    return sql + "PRAGMA user_version = " + std::to_string(version);
}

// Saves these records and nothing else.
inline SaveResult saveRecords(Store& store, std::vector<RecordChange> records, double seconds = 1) {
    ChangeSet changes = changesAt(seconds);
    changes.records = std::move(records);
    return store.save(changes);
}

// Flushes the backlog: a save that removes a record always does.
inline void flushIndexes(Store& store) {
    ChangeSet changes;
    changes.removed = {"nobody"};
    store.save(changes);
}

// Adds a person; returns the unique id.
inline std::string addPerson(Store& store, Values values) {
    const std::string uid = newUid(Kind::person);
    saveRecords(store, {inserted(uid, std::move(values))});
    return uid;
}

inline Query query(std::string property, Comparison comparison, Value value) {
    return Query{Condition{Kind::person, std::move(property), {}, {}, std::move(value), comparison}};
}

// Returns the unique ids that a search finds.
inline std::vector<std::string> found(const Store& store, const Query& wanted, Date now = Date{0}) {
    std::vector<std::string> uids;
    for (const RowId row : store.search(wanted, now)) {
        uids.push_back(store.find(row)->uid);
    }
    return uids;
}

inline Value text(std::string_view value) {
    return std::string(value);
}
// Returns an interval of [value] days, in seconds, for the interval comparisons.
inline Value days(std::int64_t value) {
    return value * 86400;
}

inline Value number(std::int64_t value) {
    return value;
}

// A record in memory.
class MemoryRecord final : public RecordView {
  public:
    MemoryRecord(Kind kind, Values values) : kind_(kind), values_(std::move(values)) {}
    Kind kind() const override { return kind_; }
    const Value& value(std::string_view property) const override {
        static const Value kNone;
        const auto found = values_.find(std::string(property));
        return found == values_.end() ? kNone : found->second;
    }
    Values& values() { return values_; }

  private:
    Kind kind_;
    Values values_;
};

} // namespace addressbook::test
