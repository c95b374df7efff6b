#pragma once

// The address book on disk: one SQLite database in one folder. A Store is one connection to it. A Store is
// not thread-safe; several stores, in this and other processes, may be open on the same folder.

#include "frameworks/AddressBook/store/access.h"
#include "frameworks/AddressBook/store/progress.h"
#include "frameworks/AddressBook/store/sql/store_error.h"
#include "frameworks/AddressBook/store/sync_state.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/query.h"
#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/values/value.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// A property of people or of groups, by its name.
struct NamedProperty {
    Kind kind = Kind::person;
    std::string name;
    bool operator==(const NamedProperty&) const = default;
};

// A record's row in the database; ascending in the order in which records were added, and never used again.
using RowId = std::int64_t;

struct SearchStep;

// Names a record. A unique id is "<UUID>:ABPerson" or "<UUID>:ABGroup".
struct RecordRef {
    RowId row = 0;
    Kind kind = Kind::person;
    std::string uid;
};

// A record as read from its row; Store::value() and values() decode it.
struct RecordRow {
    RowId id = 0; // 0: no record; it has no values
    Kind kind = Kind::person;
    StoredUid uid;
    Date creation, modification;
    std::string properties;                // the properties blob; see record_codec.h
    mutable bool checksumVerified = false; // the checksum of `properties` is right
};

// The changes of one record, or a new record with all its values. UID and Modification among the values are
// ignored, Creation as well unless the record is new.
struct RecordChange {
    std::string uid;
    Kind kind = Kind::person;
    bool insert = false;
    // Property -> new value; "no value" removes it. The picture is property::kImage.
    std::map<std::string, Value> values;
    // Of a new record, when it is not empty: all values but the picture and the creation date, already encoded
    // (encodeValues), which takes far less memory. Not checked.
    std::string card = {};
};

// One membership added or removed.
struct MembershipChange {
    std::string group;  // uid
    std::string member; // uid of a person, or of a group for a subgroup
    bool add = true;
};

// Everything that one save writes, in one transaction. A group whose memberships change counts as changed,
// and so does a record that loses a value because its custom property is removed. A save is refused
// (StoreError::Reason::refused) and writes nothing when it inserts a unique id that exists, defines a
// built-in or internal property, sets a picture that is not data, or nests values deeper than kMaxValueDepth.
struct ChangeSet {
    Date time;                                   // becomes the Modification date of every changed record
    std::vector<PropertyDefinition> definitions; // custom properties added
    std::vector<PropertyDefinition> removedDefinitions; // removed, with all their values
    // Properties whose texts are looked up by their endings from now on, and those that are no more: the index makes
    // such searches as quick as those for beginnings, and each save of such a text a little slower. It tells nobody.
    std::vector<NamedProperty> endings, removedEndings;
    std::vector<RecordChange> records; // insertions in the order in which they were added
    std::vector<std::string> removed;  // uids
    std::vector<MembershipChange> memberships;
    std::optional<std::string> me; // uid of the user's own card; "" clears it, nothing leaves it
    SyncChanges sync;              // tells nobody: the records have not changed by it
    // What was read to make this is of the moment after the save of this number in the change log: when another save
    // since then changed one of the records that this one is about, nothing is written (SaveResult::outdated).
    std::optional<std::int64_t> basis;
    bool empty() const; // whatever the basis
};

// What a save did. Each unique id is there at most once.
struct SaveResult {
    std::vector<std::string> inserted, updated, deleted;
    std::vector<RowId> insertedRows; // the rows of `inserted`, in the same order
    std::vector<std::string>
        missing; // changed here, but deleted by another process; their changes were dropped
    std::vector<MembershipChange> circular;          // left out: the group would contain itself
    std::vector<std::int64_t> accounts, collections; // the ids of the new ones, in their order
    std::int64_t change = 0; // the number of this save in the change log; 0 when nothing was written
    bool outdated = false;   // nothing was written, since another save came between; see ChangeSet::basis
};

// One save as the change log records it. Empty lists mean that anything may have changed: a very large save,
// a change of the custom properties or of `me` alone, or saves so old that the log no longer has them. Saves that
// changed nothing but SyncChanges have a number and are not told.
struct LoggedChange {
    std::int64_t change = 0;
    std::vector<std::string> inserted = {}, updated = {}, deleted = {};
    bool own = false; // saved by this process, through any Store
    bool tellsNothing() const { return inserted.empty() && updated.empty() && deleted.empty(); }
};

// One connection to the address book in a folder.
class Store {
  public:
    using Access = addressbook::Access;

    // Returns $ADDRESSBOOK_HOME, else $XDG_DATA_HOME/AddressBook, else ~/.local/share/AddressBook.
    static std::filesystem::path defaultFolder();

    // Opens the database in [folder]. With readWrite, makes the folder's last component and the database when
    // they are missing (for their owner only), and upgrades an older schema. $ADDRESSBOOK_HOME must exist: a
    // mistyped folder is an error, not a new address book. A file or folder that may not be written is opened
    // for reading. Waits up to [busyTimeout] for a lock of another process, here and in every later call.
    // Throws StoreError, and so does everything below that reads or writes.
    explicit Store(const std::filesystem::path& folder, Access access = Access::readWrite,
                   std::chrono::milliseconds busyTimeout = std::chrono::seconds(10));
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const std::filesystem::path& file() const;
    bool readOnly() const;
    // Whether the files are read without locks, as they were when they were opened, because no file can be
    // made beside them. Only lastChange() and the constructor of ReadTransaction look whether they have
    // changed since, and then open them again.
    bool readsWithoutLocks() const;
    // Whether the open file is no longer the one at its path: it was removed or replaced.
    bool moved() const;

    // Return a record's row, kind and unique id; nothing when there is no such record.
    std::optional<RecordRef> find(std::string_view uid) const;
    std::optional<RecordRef> find(RowId row) const;
    // Returns row, kind and unique id of a deleted record by the row it had; nothing when there was none, or
    // when more than a million records were deleted since.
    std::optional<RecordRef> findDeleted(RowId row) const;
    // Return the rows of all records of a kind, in the order in which they were added, and their number.
    std::vector<RowId> rows(Kind kind) const;
    std::int64_t count(Kind kind) const;

    // Return the value of one property, or all values but the picture (kImage). An unknown row has no values.
    Value value(RowId row, std::string_view property) const;
    std::map<std::string, Value> values(RowId row) const;

    // Return a record to take values from without further reading, except the picture; readFrom() returns the
    // first [count] records from [row] on. A damaged record is reported when a value is taken from it.
    std::optional<RecordRow> read(std::string_view uid) const;
    std::optional<RecordRow> read(RowId row) const;
    std::vector<RecordRow> readFrom(RowId row, std::size_t count) const;
    Value value(const RecordRow& record, std::string_view property) const;
    std::map<std::string, Value> values(const RecordRow& record) const;
    // Returns a value in encoded form (encodeValue), in memory that [record] owns; empty for no value. The
    // unique id, the two dates and the picture are never encoded.
    std::string_view encodedValue(const RecordRow& record, std::string_view property) const;
    // Throws StoreError (damaged), saying [what] is wrong with the bytes of [record].
    [[noreturn]] void reportDamage(const RecordRow& record, const std::string& what) const;

    // A read transaction: while one lives, everything that is read is of one moment, and reading is faster.
    // They may be nested. Keep it short, and save nothing meanwhile.
    class ReadTransaction {
      public:
        explicit ReadTransaction(const Store& store);
        ~ReadTransaction();
        ReadTransaction(const ReadTransaction&) = delete;
        ReadTransaction& operator=(const ReadTransaction&) = delete;

      private:
        const Store& store_;
    };

    // Return the people and the groups in a group, in the order of joining, and the groups that a record is
    // in, in the order in which these were added.
    std::vector<RowId> members(RowId group) const;
    std::vector<RowId> subgroups(RowId group) const;
    std::vector<RowId> parents(RowId record) const;

    // Returns the unique id of the user's own card; nothing when there is none.
    std::optional<std::string> me() const;

    // Returns the custom properties, in the order in which they were added.
    std::vector<PropertyDefinition> definitions() const;

    // Returns the properties whose texts are looked up by their endings; see ChangeSet::endings.
    std::vector<NamedProperty> endings() const;

    // Returns the records that meet the query, in the order in which they were added. [now] is what "today"
    // means.
    std::vector<RowId> search(const Query& query, Date now) const;

    // Runs the search and returns how it was done; see explain.h. The result refers to [query].
    SearchStep explain(const Query& query, Date now) const;

    // Writes all changes, durably, or none. Throws StoreError, also when the file was removed or replaced, as
    // the changes would be lost with it.
    SaveResult save(const ChangeSet& changes);

    // Return the number of the newest save in the change log, 0 when there is none, and all saves after
    // number [change]. A lower number than one seen before means that an older state of the book was
    // restored.
    std::int64_t lastChange() const;
    std::vector<LoggedChange> changesSince(std::int64_t change) const;

    // Return what is noted for keeping in step with servers; see sync_state.h. Links and conflicts in the order in
    // which they were added; of several links of a record the one that it belongs to first.
    std::vector<SyncAccount> syncAccounts() const;
    std::vector<SyncCollection> syncCollections() const;
    std::vector<SyncConflict> syncConflicts() const;
    std::optional<SyncLink> syncLink(std::int64_t collection, std::string_view href) const;
    std::vector<SyncLink> syncLinksOf(std::string_view uid) const;
    // Calls [visit] with each link of a collection, without its text.
    void visitSyncLinks(std::int64_t collection, const std::function<void(SyncLink&&)>& visit) const;

    // Looks for damage and returns a sentence for each problem found. Runs SQLite's own check, then looks for
    // dangling and contradictory rows; with Depth::everything also compares the search indexes with the
    // records, which takes far longer.
    enum class Depth { records, everything };
    std::vector<std::string> check(Depth depth = Depth::everything, const Progress& progress = {}) const;

    struct Impl; // shared by the store's sources

  private:
    std::unique_ptr<Impl> impl_;
};

} // namespace addressbook
