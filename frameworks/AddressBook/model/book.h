#pragma once

// The address book as this process sees it: the store, with everything that was changed here and is not saved
// yet laid over it. Free of Objective-C; the framework's classes are thin over this. Not thread-safe, except
// invalidateAll(). Every function that reads or writes the store throws StoreError when it cannot.
//
// What others save shows at the next call. Values changed here and not saved stay as they are here, all
// others become the new ones. A record that was deleted elsewhere is gone at once: lists and searches no
// longer have it, whoever holds it still reads what it had. Unsaved changes to it, made before or after, are
// orphaned until the save, which reports it as missing; should it be brought back before that, they are there
// again.

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace addressbook {

// One record as this process sees it. There is one object for each unique id for as long as anybody holds it.
struct LiveRecord : std::enable_shared_from_this<LiveRecord> {
    enum class State {
        detached,   // made here, not added
        inserted,   // added, not saved
        persistent, // in the database
        removed,    // in the database, removed here, not saved
        deleted     // its removal was saved, here or elsewhere
    };
    std::string uid;
    Kind kind = Kind::person;
    State state = State::detached;
    RowId row = 0;
    std::map<std::string, Value> changes;            // unsaved values; no value: removed
    std::vector<std::shared_ptr<LiveRecord>> joined; // of a group: members and subgroups that joined, unsaved
    std::set<std::string> left;                      // of a group: uids that left, unsaved
    std::optional<RecordRow> cachedRow;              // what is stored, once it was asked for; without the uid
    bool removedHere = false;                        // of a deleted one: by this process
    void* object = nullptr; // the live Objective-C object of this record; it clears this when it goes

    bool inBook() const { return state == State::inserted || state == State::persistent; }
    bool inDatabase() const { return state == State::persistent || state == State::removed; }
    bool unsaved() const { return !changes.empty() || !joined.empty() || !left.empty(); }
    bool deletedElsewhere() const { return state == State::deleted && !removedHere; }
};
using LiveRecordPtr = std::shared_ptr<LiveRecord>;

// Returns the type of a built-in property that users may see, else 0.
int publicType(Kind kind, std::string_view property);

// Returns a new record with a new unique id and its dates.
std::unique_ptr<LiveRecord> newRecord(Kind kind);

class Book : public std::enable_shared_from_this<Book> {
  public:
    // Opens the default folder's address book.
    static std::shared_ptr<Book> open();

    explicit Book(std::unique_ptr<Store> store);
    bool readOnly() const { return store_->readOnly(); }
    // Return the database's file, and the number of the newest save in it that this book knows.
    const std::filesystem::path& file() const { return store_->file(); }
    std::int64_t seenChange() const { return seenChange_; }

    // Makes every book of the process ask for others' saves before it is next read. May be called from any
    // thread.
    static void invalidateAll() { generation_.fetch_add(1, std::memory_order_release); }

    // Returns a new record, added to no address book yet.
    LiveRecordPtr create(Kind kind);

    // Returns the record with this unique id, null when the address book has none.
    LiveRecordPtr find(std::string_view uid);
    // Returns the record in a row of store(), never null: for a deleted one a tombstone with its unique id. Throws
    // StoreError when so many were deleted since that the id is not known any more.
    LiveRecordPtr at(RowId row);
    // Returns the record that was in a row of an earlier store(), wherever it is now; as above.
    LiveRecordPtr at(RowId row, const std::shared_ptr<const Store>& origin);
    // Returns what rows are rows of. When another file takes the database's place, another store takes this
    // one's; whoever keeps rows keeps this, and with it the old file.
    std::shared_ptr<const Store> store() const { return store_; }

    // A record in a list: its row, or the record itself where it has no row yet.
    struct Place {
        RowId row = 0;
        LiveRecordPtr record;
    };
    // Return all records of a kind, and those that meet a query, in the order in which they were added. [now]
    // is what "today" means.
    std::vector<Place> records(Kind kind);
    std::vector<Place> search(const Query& query, Date now);
    // Whether one record meets a query.
    bool matches(const Query& query, LiveRecord& record, Date now);

    // Returns a value as changed here, else as stored. The reference lives until the next call.
    const Value& value(LiveRecord& record, std::string_view property);
    // Like value(), without refreshing first.
    const Value& current(LiveRecord& record, std::string_view property);
    // Returns a stored value as its bytes (encodeValue), empty for no value; they live until the next call.
    // Nothing for a value that was changed here, and for those that are kept apart: the unique id, the dates,
    // the picture.
    std::optional<std::string_view> encoded(LiveRecord& record, std::string_view property);
    // Throws StoreError: such bytes make no sense.
    [[noreturn]] void reportDamage(const LiveRecord& record, const std::string& what) const;
    // Returns a number that changes whenever values may have changed, here or elsewhere.
    std::uint64_t revision() {
        refreshIfStale();
        return revision_;
    }
    // Returns the name to show; see display_name.h.
    std::string displayName(LiveRecord& record);
    // Returns all values that are set, the picture included.
    std::map<std::string, Value> values(LiveRecord& record);
    // Sets a value; no value removes it.
    void set(const LiveRecordPtr& record, const std::string& property, Value value);

    // Adds a record; returns false when it is in the book already, or its removal was saved. Removes one;
    // returns false when it is not in the book.
    bool add(const LiveRecordPtr& record);
    bool remove(const LiveRecordPtr& record);

    // Return a group's members of one kind, in the order of joining, and the groups that a record is in, in
    // the order of adding.
    std::vector<LiveRecordPtr> members(LiveRecord& group, Kind kind);
    std::vector<LiveRecordPtr> parents(const LiveRecord& record);
    bool isMember(LiveRecord& group, const LiveRecord& member);
    // Puts a record into a group and takes one out. Return false when there is nothing to do, when the member
    // is not in the book, and when groups would form a circle.
    bool join(const LiveRecordPtr& group, const LiveRecordPtr& member);
    bool leave(const LiveRecordPtr& group, const LiveRecord& member);

    // Returns the user's own card, null when there is none; sets it, null for none.
    LiveRecordPtr me();
    void setMe(const LiveRecordPtr& record);

    // Return the type of a property, 0 for an unknown one, and the names of all, the built-in ones first.
    int typeOf(Kind kind, std::string_view property);
    std::vector<std::string> properties(Kind kind);
    // Add and remove custom properties; return how many. define() returns -1 and changes nothing when a name
    // or a type is not valid.
    int define(Kind kind, const std::map<std::string, int>& properties);
    int undefine(Kind kind, const std::vector<std::string>& properties);

    // Notes that a record was refused, as the book may only be read; returns whether one was since this was
    // last asked.
    void noteRefusal() { refused_ = true; }
    bool takeRefusal() { return std::exchange(refused_, false); }

    // Collects, in sentences, what saves left out; returns it once.
    void noteLeftOut(const std::string& sentence) {
        leftOut_ += leftOut_.empty() || sentence.empty() ? sentence : " " + sentence;
    }
    std::string takeLeftOut() { return std::exchange(leftOut_, {}); }

    // Whether anything is unsaved.
    bool changed() const;
    // Writes everything that is unsaved. When that fails it throws StoreError, and everything stays unsaved.
    SaveResult save(Date now);

  private:
    LiveRecordPtr adopt(LiveRecord* record);
    LiveRecordPtr materialize(RecordRow stored);
    std::optional<RecordRow> fetch(RowId row);
    void cacheRow(LiveRecord& record, RecordRow stored);
    LiveRecordPtr findNow(std::string_view uid);
    LiveRecordPtr locate(RowId row, const Store& origin);
    LiveRecordPtr tombstone(RecordRef ref);
    void forget(const LiveRecord& record);
    void load(LiveRecord& record);
    void touch(const LiveRecordPtr& record);
    bool matchesNow(const Query& query, LiveRecord& record, Date now);
    void refreshIfStale() {
        if (generation_.load(std::memory_order_acquire) != seenGeneration_) {
            refresh();
        }
    }
    void refresh();
    void applyChangeLog();
    void reopen();
    void reload(const LiveRecordPtr& record);
    void reloadAll();
    void reloadDefinitions();
    bool ascendsTo(const LiveRecordPtr& from, const LiveRecord& target);
    bool isUndefined(Kind kind, std::string_view property) const;
    bool mentionsUndefined(const Query& query) const;
    ChangeSet changes(Date now) const;
    void applySaveResult(const SaveResult& result);
    LiveRecordPtr cached(std::string_view uid) const;
    void indexByUid(const LiveRecordPtr& record);

    static std::atomic<std::uint64_t> generation_;

    std::shared_ptr<Store> store_;
    std::uint64_t seenGeneration_;
    std::int64_t seenChange_ = 0;                 // the newest save that this book knows
    std::vector<PropertyDefinition> definitions_; // as stored
    std::unordered_map<std::string_view, std::weak_ptr<LiveRecord>>
        byUid_; // keys are the uids in the records themselves
    std::unordered_map<RowId, std::weak_ptr<LiveRecord>> byRow_;
    std::unordered_set<RowId> removedRows_;        // whose records were removed here, and it is saved
    std::deque<std::weak_ptr<LiveRecord>> loaded_; // whose stored values are in memory, oldest first
    std::uint64_t revision_ = 1;
    std::deque<RecordRow> readAhead_; // read ahead for a walk, ascending
    std::size_t readAheadSize_ = 0;   // how many are read next
    RowId lastFetched_ = -1'000;      // the row that was fetched last
    Value scratch_;                   // what value() refers to when no record holds it

    bool refused_ = false;
    std::string leftOut_;

    // What is unsaved.
    std::vector<LiveRecordPtr> added_;
    std::map<RowId, LiveRecordPtr> changed_;
    std::map<std::string_view, LiveRecordPtr> orphaned_; // changed here, and deleted elsewhere; by uid
    std::unordered_map<RowId, LiveRecordPtr> removed_;
    std::optional<std::string> me_;
    std::vector<PropertyDefinition> defined_, undefined_;
};

} // namespace addressbook
