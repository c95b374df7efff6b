#pragma once

// The address book as this process sees it: the store, overlaid with everything that was changed in this
// process and is not saved yet. C++ only; the framework's Objective-C classes are a thin layer over it. Not
// thread-safe, except invalidateAll(). Every function that reads or writes the store throws StoreError when
// it cannot.
//
// Saves of other processes become visible at the next call. Unsaved values of this process stay; all others
// become the saved ones. A record that another process deleted disappears from lists and searches at once,
// but a holder can still read the values it had. Unsaved changes to such a record are orphaned: the next save
// reports the record as missing and drops them, unless the record is restored before, which brings them back.

#include "frameworks/AddressBook/model/live_record.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <atomic>
#include <boost/icl/interval_set.hpp>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace addressbook {

// Returns the type of a built-in property that is public, else 0.
int publicType(Kind kind, std::string_view property);

// An open address book with its unsaved changes.
class Book : public std::enable_shared_from_this<Book> {
  public:
    // Opens the address book in the default folder. Throws StoreError.
    static std::shared_ptr<Book> open();

    explicit Book(std::unique_ptr<Store> store);
    bool readOnly() const { return store_->readOnly(); }
    // Return the database's file, and the number of the newest save in its change log that this book has
    // seen.
    const std::filesystem::path& file() const { return store_->file(); }
    std::int64_t seenChange() const { return seenChange_; }

    // Makes every book of the process look for new saves before it is next read. Thread-safe.
    static void invalidateAll() { generation_.fetch_add(1, std::memory_order_release); }

    // Returns a new record with a new unique id, created and modified now, which is not added yet.
    LiveRecordPtr create(Kind kind);

    // Returns the record with this unique id, null when the address book has none.
    LiveRecordPtr find(std::string_view uid);
    // Returns the record in a row of store(), never null: for a deleted one a tombstone with its unique id.
    // Throws StoreError when so many records were deleted since that the id is no longer known.
    LiveRecordPtr at(RowId row);
    // Like at(), for a row of [origin], an earlier store(): returns that record, whatever row it has now.
    LiveRecordPtr at(RowId row, const std::shared_ptr<const Store>& origin);
    // Returns the store that rows belong to. It is replaced when another file takes the database's place, so
    // keep it together with the rows: it keeps the old file open.
    std::shared_ptr<const Store> store() const { return store_; }

    // A record in a list: its row, or the record itself while it has no row.
    struct Place {
        RowId row = 0;
        LiveRecordPtr record;
    };
    // Return all records of a kind, and those that meet a query, in the order in which they were added. [now]
    // is what "today" means in queries.
    std::vector<Place> records(Kind kind);
    std::vector<Place> search(const Query& query, Date now);
    // Whether one record meets a query.
    bool matches(const Query& query, LiveRecord& record, Date now);

    // Returns a property's unsaved value, else the stored one. The reference is valid until the next call.
    const Value& value(LiveRecord& record, std::string_view property);
    // Like value(), without refreshing first.
    const Value& current(LiveRecord& record, std::string_view property);
    // Returns a stored value in encoded form (encodeValue), empty for no value; valid until the next call.
    // Nothing for a value with unsaved changes, and for those outside the properties blob: the unique id, the
    // dates, the picture.
    std::optional<std::string_view> encoded(LiveRecord& record, std::string_view property);
    // Throws StoreError (damaged), saying [what] is wrong with the stored bytes of [record].
    [[noreturn]] void reportDamage(const LiveRecord& record, const std::string& what) const;
    // Returns a number that changes whenever values may have changed, by this process or another.
    std::uint64_t revision() {
        refreshIfStale();
        return revision_;
    }
    // Returns the name to show; see display_name.h.
    std::string displayName(LiveRecord& record);
    // Returns all values that are set, the picture included.
    std::map<std::string, Value> values(LiveRecord& record);
    // Sets a value; "no value" removes the property.
    void set(const LiveRecordPtr& record, const std::string& property, Value value);

    // Adds a record. Returns false when it is in the book already, or was deleted.
    bool add(const LiveRecordPtr& record);
    // Removes a record. Returns false when it is not in the book.
    bool remove(const LiveRecordPtr& record);

    // Return a group's members of one kind, in the order of joining, and the groups that a record is in, in
    // the order in which these were added.
    std::vector<LiveRecordPtr> members(LiveRecord& group, Kind kind);
    // Like members(), as places for a list: reads no record that it need not.
    std::vector<Place> inside(LiveRecord& group, Kind kind);
    std::vector<LiveRecordPtr> parents(const LiveRecord& record);
    bool isMember(LiveRecord& group, const LiveRecord& member);
    // Add a record to a group and remove one from it. Return false when that changes nothing, when the member
    // is not in the book, and when groups would form a circle.
    bool join(const LiveRecordPtr& group, const LiveRecordPtr& member);
    bool leave(const LiveRecordPtr& group, const LiveRecord& member);

    // Return and set the record that is the user's own card; null for none.
    LiveRecordPtr me();
    void setMe(const LiveRecordPtr& record);

    // Return the type of a property, 0 for an unknown one, and the names of all properties, built-in ones
    // first.
    int typeOf(Kind kind, std::string_view property);
    std::vector<std::string> properties(Kind kind);
    // Add and remove custom properties; return how many were added or removed. define() returns -1 and
    // changes nothing when a name or a type is not valid.
    int define(Kind kind, const std::map<std::string, int>& properties);
    int undefine(Kind kind, const std::vector<std::string>& properties);

    // Notes that a change was refused because the book may only be read; takeRefusal() returns whether one
    // was since it was last called.
    void noteRefusal() { refused_ = true; }
    bool takeRefusal() { return std::exchange(refused_, false); }

    // Collects sentences that say what saves left out; takeLeftOut() returns and clears them.
    void noteLeftOut(const std::string& sentence) {
        leftOut_ += leftOut_.empty() || sentence.empty() ? sentence : " " + sentence;
    }
    std::string takeLeftOut() { return std::exchange(leftOut_, {}); }

    // Whether anything is unsaved.
    bool changed() const;
    // Writes everything that is unsaved. Throws StoreError, and then everything stays unsaved.
    SaveResult save(Date now);

  private:
    LiveRecordPtr materialize(RecordRow&& stored);
    std::optional<RecordRow> fetch(RowId row);
    void dropReadAhead() {
        readAhead_.clear();
        readAheadAt_ = 0;
    }
    LiveRecordPtr findNow(std::string_view uid);
    LiveRecordPtr locate(RowId row, const Store& origin);
    LiveRecordPtr tombstone(const RecordRef& ref);
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

    static std::atomic<std::uint64_t> generation_;

    std::shared_ptr<Store> store_;
    std::uint64_t seenGeneration_;
    std::int64_t seenChange_ = 0;                 // the newest save that this book knows
    std::vector<PropertyDefinition> definitions_; // as stored
    LiveRecords live_;
    // Of records that this process removed and saved. As intervals, since what is removed at once mostly stood together,
    // and a process may run for months.
    boost::icl::interval_set<RowId> removedRows_;
    std::uint64_t revision_ = 1;
    std::vector<RecordRow> readAhead_; // rows that a walk will probably ask for next, ascending
    std::size_t readAheadAt_ = 0;      // the first of them that was not asked for yet
    std::size_t readAheadSize_ = 0;    // how many rows are read ahead next time
    RowId lastFetched_ = -1'000;       // the row that was fetched last
    Value scratch_;                    // holds what value() returns a reference to, if no record does

    bool refused_ = false;
    std::string leftOut_;

    // What is unsaved.
    std::vector<LiveRecordPtr> added_;
    std::map<RowId, LiveRecordPtr> changed_;
    std::map<std::string_view, LiveRecordPtr> orphaned_; // with changes, but deleted elsewhere; by uid
    std::unordered_map<RowId, LiveRecordPtr> removed_;
    std::optional<std::string> me_;
    std::vector<PropertyDefinition> defined_, undefined_;
};

} // namespace addressbook
