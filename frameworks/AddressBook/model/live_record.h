#pragma once

// A record in memory, and where those of a book are found.

#include "frameworks/AddressBook/store/store.h"

#include <boost/intrusive/list.hpp>
#include <boost/intrusive/unordered_set.hpp>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

class LiveRecords;

// One record as this process sees it. There is only one object for a unique id at a time, which lives as long
// as anybody holds it.
struct LiveRecord : std::enable_shared_from_this<LiveRecord> {
    enum class State {
        detached,   // made in this process, not added to the book
        inserted,   // added, not saved
        persistent, // in the database
        removed,    // in the database; removed by this process, which is not saved
        deleted     // its removal was saved, by this process or another
    };
    LiveRecord(StoredUid uid, Kind what) : kind(what), stored_(std::move(uid)) {}
    ~LiveRecord();
    LiveRecord(const LiveRecord&) = delete;
    LiveRecord& operator=(const LiveRecord&) = delete;

    const Kind kind;
    State state = State::detached;
    std::map<std::string, Value> changes;            // unsaved values; "no value" removes one
    std::vector<std::shared_ptr<LiveRecord>> joined; // of a group: members and subgroups added, unsaved
    std::set<std::string> left;                      // of a group: uids of members removed, unsaved
    std::optional<RecordRow> cachedRow;              // the stored row once it was read; its uid is empty
    bool removedHere = false;                        // of a deleted record: this process removed it
    void* object = nullptr; // the Objective-C object of this record, not retained; it clears this in dealloc

    // Return the unique id, as text (made once) and as it is stored.
    const std::string& uid() const;
    const StoredUid& storedUid() const { return stored_; }
    // The row in the database, 0 for none. LiveRecords sets it.
    RowId row() const { return row_; }

    bool inBook() const { return state == State::inserted || state == State::persistent; }
    bool inDatabase() const { return state == State::persistent || state == State::removed; }
    bool unsaved() const { return !changes.empty() || !joined.empty() || !left.empty(); }
    bool deletedElsewhere() const { return state == State::deleted && !removedHere; }

  private:
    friend class LiveRecords;

    StoredUid stored_;
    mutable std::string uid_; // empty until asked for
    RowId row_ = 0;
    LiveRecords* records_ = nullptr; // those that it is among
    boost::intrusive::unordered_set_member_hook<> byUid_, byRow_;
    boost::intrusive::list_member_hook<> loaded_;
};
using LiveRecordPtr = std::shared_ptr<LiveRecord>;

// The records in memory of one book, which it does not hold: each leaves when it is destroyed. Finding and
// adding one takes no memory of its own.
class LiveRecords {
  public:
    LiveRecords();
    ~LiveRecords();
    LiveRecords(const LiveRecords&) = delete;
    LiveRecords& operator=(const LiveRecords&) = delete;

    // Makes this the record that is found by its unique id, instead of another one.
    void add(LiveRecord& record);
    // Makes this the record that is found in a row.
    void setRow(LiveRecord& record, RowId row);
    // Forgets which records are in which rows; they keep their numbers.
    void forgetRows();

    // Return the record that has a unique id or is in a row, null for none.
    LiveRecordPtr find(const StoredUid& uid) const;
    LiveRecordPtr find(RowId row) const;
    // Returns all records.
    std::vector<LiveRecordPtr> all() const;

    // Keeps the stored row of a record in memory, and drops that of the record that has had one for longest
    // when too many have.
    void keepRow(LiveRecord& record, RecordRow&& row);

  private:
    friend struct LiveRecord;
    struct UidOf {
        using type = StoredUid; // NOLINT(readability-identifier-naming): the name that Boost asks for
        const StoredUid& operator()(const LiveRecord& record) const { return record.stored_; }
    };
    struct RowOf {
        using type = RowId; // NOLINT(readability-identifier-naming)
        const RowId& operator()(const LiveRecord& record) const { return record.row_; }
    };
    struct HashUid {
        std::size_t operator()(const StoredUid& uid) const { return uid.hash(); }
    };
    struct HashRow {
        std::size_t operator()(RowId row) const { return static_cast<std::size_t>(row); }
    };
    using Hook = boost::intrusive::unordered_set_member_hook<>;
    template <Hook LiveRecord::* Member, typename KeyOf, typename Hash>
    using Index =
        boost::intrusive::unordered_set<LiveRecord, boost::intrusive::member_hook<LiveRecord, Hook, Member>,
                                        boost::intrusive::key_of_value<KeyOf>, boost::intrusive::hash<Hash>,
                                        boost::intrusive::power_2_buckets<true>>;
    // An index with its buckets, of which there are at least as many as records.
    template <typename Set>
    struct Table {
        std::vector<typename Set::bucket_type> buckets =
            std::vector<typename Set::bucket_type>(kFewestBuckets);
        Set index{typename Set::bucket_traits(buckets.data(), buckets.size())};

        void insert(LiveRecord& record) {
            if (index.size() == buckets.size()) {
                std::vector<typename Set::bucket_type> more(buckets.size() * 2);
                index.rehash(typename Set::bucket_traits(more.data(), more.size()));
                buckets = std::move(more);
            }
            index.insert(record);
        }
        void erase(LiveRecord& record) { index.erase(index.iterator_to(record)); }
    };
    static constexpr std::size_t kFewestBuckets = 64;

    void leave(LiveRecord& record);

    Table<Index<&LiveRecord::byUid_, UidOf, HashUid>> byUid_;
    Table<Index<&LiveRecord::byRow_, RowOf, HashRow>> byRow_;
    boost::intrusive::list<LiveRecord,
                           boost::intrusive::member_hook<LiveRecord, boost::intrusive::list_member_hook<>,
                                                         &LiveRecord::loaded_>>
        loaded_; // records with a cachedRow, or which had one, oldest first
};

} // namespace addressbook
