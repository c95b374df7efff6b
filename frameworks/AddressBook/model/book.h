#pragma once

// The address book as this process sees it: the store, with everything that was changed here and is not saved
// yet laid over it. Free of Objective-C; the framework's classes are thin over this. One thread at a time,
// but for stir(); every function that reads or writes the store throws StoreError when it cannot.
//
// What others save shows at the next call. Values changed here and not saved stay as they are here, all
// others become the new ones. A record that was deleted elsewhere is gone at once: lists and searches no
// longer have it, whoever holds it still reads what it had. Its unsaved changes wait for the save, which
// tells that it is missing; should it be brought back before that, they are there again.

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

// One record as this process sees it. There is one card per unique id for as long as anybody holds it.
struct Card : std::enable_shared_from_this<Card> {
    enum class Standing {
        loose,   // made here, not added
        added,   // added, not saved
        stored,  // in the database
        removed, // in the database, removed here, not saved
        gone     // its removal was saved, here or elsewhere
    };
    std::string uid;
    Kind kind = Kind::person;
    Standing standing = Standing::loose;
    RowId row = 0;
    std::map<std::string, Value> changes;      // unsaved values; no value: removed
    std::vector<std::shared_ptr<Card>> joined; // of a group: members and subgroups that joined, unsaved
    std::set<std::string> left;                // of a group: uids that left, unsaved
    std::optional<RecordRow> read;             // what is stored, once it was asked for; without the uid
    bool removedHere = false;                  // of one that is gone: by this process
    void* object = nullptr; // the live Objective-C object of this record; it clears this when it goes

    bool inBook() const { return standing == Standing::added || standing == Standing::stored; }
    bool inDatabase() const { return standing == Standing::stored || standing == Standing::removed; }
    bool unsaved() const { return !changes.empty() || !joined.empty() || !left.empty(); }
};
using CardPtr = std::shared_ptr<Card>;

// The type of a built-in property that users may see, else 0.
int publicType(Kind kind, std::string_view property);

// A new record with a new unique id.
std::unique_ptr<Card> makeCard(Kind kind);

class Book : public std::enable_shared_from_this<Book> {
  public:
    // Opens the default folder's address book.
    static std::shared_ptr<Book> open();

    explicit Book(std::unique_ptr<Store> store);
    bool readOnly() const { return store_->readOnly(); }
    // The database's file, and the newest save in it that this book knows.
    const std::filesystem::path& file() const { return store_->file(); }
    std::int64_t seen() const { return seen_; }

    // Says, from any thread, that something was saved: every book looks before it is next read.
    static void stir() { stirred_.fetch_add(1, std::memory_order_release); }

    // A new record, added to no address book yet.
    CardPtr create(Kind kind);

    // The record with this id, null when the address book has none.
    CardPtr find(std::string_view uid);
    // The record in this row. It is never null: a row that was deleted answers an empty card, with the id
    // that the record had when that is known.
    CardPtr at(RowId row, Kind kind);
    // The same for a row that was found in an earlier edition(), and that may mean nothing any more: with
    // another file in the database's place a new edition begins.
    CardPtr at(RowId row, Kind kind, int edition);
    int edition() const { return edition_; }

    // A record in a list: a row, or the card where it has none yet.
    struct Place {
        RowId row = 0;
        CardPtr card;
    };
    // All records of a kind, and those that meet a query; in the order in which they were added.
    std::vector<Place> records(Kind kind);
    std::vector<Place> search(const Query& query, Date now);
    bool matches(const Query& query, Card& card, Date now);

    // A value as changed here, else as stored. The reference lives until the next call.
    const Value& value(Card& card, std::string_view property);
    // The same, without looking first whether others saved something.
    const Value& current(Card& card, std::string_view property);
    // The same for a value that is as stored, as its bytes (encodeValue): they live until the next call, and
    // are empty for no value. Nothing for a value that was changed here, or that is kept apart from the
    // others.
    std::optional<std::string_view> encoded(Card& card, std::string_view property);
    // Reports that such bytes make no sense.
    [[noreturn]] void damaged(const Card& card, const std::string& what) const;
    // A number that changes whenever values may have changed, here or elsewhere.
    std::uint64_t state() {
        notice();
        return state_;
    }
    // All values that are set, the picture included.
    std::map<std::string, Value> values(Card& card);
    // Sets a value; no value removes it.
    void set(const CardPtr& card, const std::string& property, Value value);

    // False when the record is in the book already, or was deleted for good; when it is not in the book.
    bool add(const CardPtr& card);
    bool remove(const CardPtr& card);

    // Members that are people or groups, in the order of joining; the groups a record is in, in the order of
    // adding.
    std::vector<CardPtr> members(Card& group, Kind kind);
    std::vector<CardPtr> parents(const Card& card);
    bool isMember(Card& group, const Card& member);
    // False when there is nothing to do, when the member is not in the book, or when groups would form a
    // circle.
    bool join(const CardPtr& group, const CardPtr& member);
    bool leave(const CardPtr& group, const Card& member);

    // The user's own card.
    CardPtr me();
    void setMe(const CardPtr& card);

    // Properties: 0 for an unknown one; all names, the built-in ones first.
    int typeOf(Kind kind, std::string_view property);
    std::vector<std::string> properties(Kind kind);
    // How many were added or removed; -1, and nothing is changed, when a name or a type is not valid.
    int define(Kind kind, const std::map<std::string, int>& properties);
    int undefine(Kind kind, const std::vector<std::string>& properties);

    // A record was refused, as the book may only be read; and whether that happened since this was last
    // asked.
    void noteRefusal() { refused_ = true; }
    bool takeRefusal() { return std::exchange(refused_, false); }

    // What saves left out, in sentences, until somebody asks for it.
    void noteLeftOut(const std::string& sentence) {
        leftOut_ += leftOut_.empty() || sentence.empty() ? sentence : " " + sentence;
    }
    std::string takeLeftOut() { return std::exchange(leftOut_, {}); }

    bool changed() const;
    // Writes everything that is unsaved; keeps it when that fails.
    SaveResult save(Date now);

  private:
    CardPtr own(Card* card);
    CardPtr card(RecordRow record);
    std::optional<RecordRow> fetch(RowId row);
    void keep(Card& card, RecordRow record);
    CardPtr lost(const std::string& uid, Kind kind);
    void forget(const Card& card);
    void load(Card& card);
    void touch(const CardPtr& card);
    bool matchesNow(const Query& query, Card& card, Date now);
    void notice() {
        if (stirred_.load(std::memory_order_acquire) != noticed_)
            catchUp();
    }
    void catchUp();
    void refresh();
    void reopen();
    void renew(const CardPtr& card);
    void renewAll();
    void takeDefinitions();
    bool ascendsTo(const CardPtr& from, const Card& target);
    bool discarded(Kind kind, std::string_view property) const;
    bool mentionsDiscarded(const Query& query) const;
    ChangeSet changes(Date now) const;
    void settle(const SaveResult& result);
    CardPtr live(std::string_view uid) const;
    void file(const CardPtr& card);

    static std::atomic<std::uint64_t> stirred_;

    std::unique_ptr<Store> store_;
    int edition_ = 0;
    std::uint64_t noticed_;
    std::int64_t seen_ = 0;                       // the newest save whose changes this book knows
    std::vector<PropertyDefinition> definitions_; // as stored
    std::unordered_map<std::string_view, std::weak_ptr<Card>> cards_; // by the uid that the card itself holds
    std::unordered_map<RowId, std::weak_ptr<Card>> rows_;
    std::unordered_map<RowId, std::string> gone_; // ids of deleted records, which lists may still name
    std::deque<std::weak_ptr<Card>> loaded_;      // whose stored values are in memory, oldest first
    std::uint64_t state_ = 1;
    std::deque<RecordRow> ahead_; // read ahead for a walk, ascending
    std::size_t aheadNext_ = 0;   // so many are read the next time
    RowId walked_ = -1'000;       // the row that was fetched last
    Value scratch_;               // what value() refers to when no card holds it

    bool refused_ = false;
    std::string leftOut_;

    // What is unsaved.
    std::vector<CardPtr> added_;
    std::map<RowId, CardPtr> changed_;
    std::vector<CardPtr> lost_; // changed here, and deleted elsewhere
    std::unordered_map<RowId, CardPtr> removed_;
    std::optional<std::string> me_;
    std::vector<PropertyDefinition> defined_, undefined_;
};

} // namespace addressbook
