#pragma once

// The address book on disk: one SQLite database in one folder. A Store is one connection and is used by one
// thread at a time; several stores, in this and other processes, may be open on the same folder.

#include "frameworks/AddressBook/store/access.h"
#include "frameworks/AddressBook/store/sql/store_error.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/query.h"
#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/values/value.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// A record's place in the database; ascending in the order in which records were added.
using RowId = std::int64_t;

struct SearchStep;

// What names a record. A unique id reads "<UUID>:ABPerson" or "<UUID>:ABGroup".
struct RecordRef {
    RowId row = 0;
    Kind kind = Kind::person;
    std::string uid;
};

// A record as it was read in one row; Store::value() and values() say what is in it.
struct RecordRow {
    RowId id = 0; // 0: no record, without values
    Kind kind = Kind::person;
    std::string uid;
    Date creation, modification;
    std::string properties;                // see record_codec.h
    mutable bool checksumVerified = false; // the checksum of `properties` was found right
};

// The changes of one record; an insertion has all its values in `values`. UID and Modification among them are
// ignored, Creation counts for an insertion only.
struct RecordChange {
    std::string uid;
    Kind kind = Kind::person;
    bool insert = false;
    std::map<std::string, Value>
        values; // property -> new value; no value removes it. The picture is property::kImage
};

// One membership added or removed.
struct MembershipChange {
    std::string group;  // uid
    std::string member; // uid of a person, or of a group for a subgroup
    bool add = true;
};

// Everything one save writes, in one transaction. A group whose memberships change counts as changed, and so
// does a record that loses a value because its custom property is removed. Refused
// (StoreError::Reason::refused, nothing written): an insertion with the unique id of a record that exists, a
// definition of a built-in or internal name, a picture that is not data, values nested beyond reason.
struct ChangeSet {
    Date time;                                   // becomes the Modification date of every changed record
    std::vector<PropertyDefinition> definitions; // custom properties added
    std::vector<PropertyDefinition> removedDefinitions; // removed, with all their values
    std::vector<RecordChange> records;                  // insertions in the order in which they were added
    std::vector<std::string> removed;                   // uids
    std::vector<MembershipChange> memberships;
    std::optional<std::string> me; // uid of the user's own card; "" clears it
    bool empty() const;
};

// What a save did: unique ids, each at most once.
struct SaveResult {
    std::vector<std::string> inserted, updated, deleted;
    std::vector<RowId> insertedRows; // where those inserted are, in the same order
    std::vector<std::string>
        missing; // changed here, but deleted by another process; their changes were dropped
    std::vector<MembershipChange> circular; // left out: the group would contain itself
    std::int64_t change = 0; // the number of this save in the change log; 0 when nothing was written
};

// One save as the change log tells it to other processes. All lists empty: anything may have changed (a very
// large save, a change of the custom properties or of `me` alone, or saves so old that the log no longer has
// them).
struct LoggedChange {
    std::int64_t change = 0;
    std::vector<std::string> inserted = {}, updated = {}, deleted = {};
    bool own = false; // saved by this process, through whatever store
    bool tellsNothing() const { return inserted.empty() && updated.empty() && deleted.empty(); }
};

// One connection to the address book in a folder.
class Store {
  public:
    using Access = addressbook::Access;

    // Returns $ADDRESSBOOK_HOME, else $XDG_DATA_HOME/AddressBook, else ~/.local/share/AddressBook.
    static std::filesystem::path defaultFolder();

    // Opens the database in [folder]; with readWrite makes the folder's last component and the database when
    // they are missing (for their owner only) and migrates an older schema. $ADDRESSBOOK_HOME must exist: a
    // mistyped folder is an error, not a new address book. A file or folder that may not be written is opened
    // for reading. Waits for other processes' locks up to [busyTimeout], then and later. Throws StoreError,
    // and so does everything below that reads or writes.
    explicit Store(const std::filesystem::path& folder, Access access = Access::readWrite,
                   std::chrono::milliseconds busyTimeout = std::chrono::seconds(10));
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const std::filesystem::path& file() const;
    bool readOnly() const;
    // Whether the files are read as they were when they were opened, because nothing can be made beside them.
    // lastChange() and the constructor of ReadTransaction open them again when they have changed; nothing
    // else does.
    bool readsWithoutLocks() const;
    // Whether the file is no longer in its place: it was removed, or another one was put there.
    bool moved() const;

    // Return what names a record, and those of a kind in the order in which they were added.
    std::optional<RecordRef> find(std::string_view uid) const;
    std::optional<RecordRef> find(RowId row) const;
    // What named the record that was in this row until it was deleted; nothing when there was none, or more
    // than a million were deleted since.
    std::optional<RecordRef> findDeleted(RowId row) const;
    std::vector<RowId> rows(Kind kind) const;
    std::int64_t count(Kind kind) const;

    // Return one property (kImage included), or all that are set but kImage. An unknown row has no values.
    Value value(RowId row, std::string_view property) const;
    std::map<std::string, Value> values(RowId row) const;

    // Return a whole record to take values from, the picture apart; readFrom() the first [count] records from
    // [row] on. A damaged record is reported when a value is taken from it.
    std::optional<RecordRow> read(std::string_view uid) const;
    std::optional<RecordRow> read(RowId row) const;
    std::vector<RecordRow> readFrom(RowId row, std::size_t count) const;
    Value value(const RecordRow& record, std::string_view property) const;
    std::map<std::string, Value> values(const RecordRow& record) const;
    // Returns the bytes (encodeValue) of a value, which live as long as the record; empty for no value. The
    // id, the two dates and the picture have none.
    std::string_view encodedValue(const RecordRow& record, std::string_view property) const;
    // Throws StoreError: such bytes make no sense.
    [[noreturn]] void reportDamage(const RecordRow& record, const std::string& what) const;

    // A read transaction: while one lives, everything that is read shows one moment, and is read faster. They
    // may be nested. Keep it short, and save nothing.
    class ReadTransaction {
      public:
        explicit ReadTransaction(const Store& store);
        ~ReadTransaction();
        ReadTransaction(const ReadTransaction&) = delete;
        ReadTransaction& operator=(const ReadTransaction&) = delete;

      private:
        const Store& store_;
    };

    // Return memberships: a group's members in the order of joining, a record's groups in the order of
    // adding.
    std::vector<RowId> members(RowId group) const;
    std::vector<RowId> subgroups(RowId group) const;
    std::vector<RowId> parents(RowId record) const;

    // Returns the unique id of the user's own card.
    std::optional<std::string> me() const;

    // Returns the custom properties, in the order in which they were added.
    std::vector<PropertyDefinition> definitions() const;

    // Returns the records that meet the query, in the order in which they were added. [now] is what "today"
    // means.
    std::vector<RowId> search(const Query& query, Date now) const;

    // Runs the search and returns how it was answered; see explain.h. The result refers to [query].
    SearchStep explain(const Query& query, Date now) const;

    // Writes everything or nothing; durable when it returns. Throws StoreError, also when the file is no
    // longer in its place: the changes would be lost with it.
    SaveResult save(const ChangeSet& changes);

    // Return the number of the newest save in the change log, and all saves after [change]. A number lower
    // than one that was seen before says that an older state of the book was restored.
    std::int64_t lastChange() const;
    std::vector<LoggedChange> changesSince(std::int64_t change) const;

    // Looks for damage: SQLite's own check, then dangling and contradictory rows; with [depth] everything
    // also whether the search indexes say what the records do, which takes far longer. Returns a sentence for
    // each problem.
    enum class Depth { records, everything };
    std::vector<std::string> check(Depth depth = Depth::everything) const;

    struct Impl; // shared by the store's sources

  private:
    std::unique_ptr<Impl> impl_;
};

} // namespace addressbook
