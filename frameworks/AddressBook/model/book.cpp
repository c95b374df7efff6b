// In this order: records, lists and searches, values, adding and removing, groups, the user's own card,
// properties. Saving, and refreshing after saves of other processes, are in book_save.cpp.

#include "frameworks/AddressBook/model/book.h"

#include "frameworks/AddressBook/values/display_name.h"

#include <algorithm>
#include <utility>

namespace addressbook {

namespace {

// A walk over records in order reads this many rows at once: few at first, as it may end soon, then more.
constexpr std::size_t kFirstReadAhead = 16;
constexpr std::size_t kMostReadAhead = 256;

const Value kNone;

// A LiveRecord for matches(), with the values that this process sees.
class LiveRecordView : public RecordView {
  public:
    LiveRecordView(Book& book, LiveRecord& record) : book_(book), record_(record) {}
    Kind kind() const override { return record_.kind; }
    const Value& value(std::string_view property) const override { return book_.current(record_, property); }

  private:
    Book& book_;
    LiveRecord& record_;
};

bool validType(int type) {
    const int base = type & ~kMultiValue;
    return base >= static_cast<int>(Type::string) && base <= static_cast<int>(Type::dateComponents);
}

auto named(Kind kind, std::string_view name) {
    return [kind, name](const PropertyDefinition& definition) {
        return definition.kind == kind && definition.name == name;
    };
}

// Returns the unsaved value of a property, "no value" when it was removed; null when it was not changed.
const Value* changeOf(const LiveRecord& record, std::string_view property) {
    if (record.changes.empty()) {
        return nullptr;
    }
    const auto change = record.changes.find(std::string(property));
    return change == record.changes.end() ? nullptr : &change->second;
}

// Whether the database keeps a property outside the properties blob.
bool keptApart(std::string_view property) {
    return property == property::kUid || property == property::kCreation ||
           property == property::kModification || property == property::kImage;
}

bool contains(const std::vector<LiveRecordPtr>& records, const LiveRecord& one) {
    return std::any_of(records.begin(), records.end(),
                       [&](const LiveRecordPtr& record) { return record.get() == &one; });
}

} // namespace

int publicType(Kind kind, std::string_view property) {
    return isInternal(property) ? 0 : builtInType(kind, property);
}

std::shared_ptr<Book> Book::open() {
    return std::make_shared<Book>(std::make_unique<Store>(Store::defaultFolder()));
}

std::atomic<std::uint64_t> Book::generation_{0};

Book::Book(std::unique_ptr<Store> store)
    : store_(std::move(store)), seenGeneration_(generation_.load()), seenChange_(store_->lastChange()),
      definitions_(store_->definitions()) {}

// Records

LiveRecordPtr Book::create(Kind kind) {
    auto record = std::make_shared<LiveRecord>(StoredUid(newUid(kind)), kind);
    const Date now = currentTime();
    record->changes[std::string(property::kCreation)] = now;
    record->changes[std::string(property::kModification)] = now;
    live_.add(*record);
    return record;
}

LiveRecordPtr Book::cached(std::string_view uid) const {
    return live_.find(StoredUid(uid));
}

LiveRecordPtr Book::materialize(RecordRow&& stored) {
    if (auto known = live_.find(stored.uid)) {
        if (known->state == LiveRecord::State::deleted) { // another process has restored it
            reload(known);
        }
        return known;
    }
    auto made = std::make_shared<LiveRecord>(std::move(stored.uid), stored.kind);
    made->state = LiveRecord::State::persistent;
    live_.add(*made);
    live_.setRow(*made, stored.id);
    live_.keepRow(*made, std::move(stored));
    return made;
}

// Reads a row. A row that follows closely on the last one fetched is part of a walk, so the next rows are
// read ahead.
std::optional<RecordRow> Book::fetch(RowId row) {
    const bool walks = row > lastFetched_ && row - lastFetched_ <= 4;
    lastFetched_ = row;
    if (!walks) {
        dropReadAhead();
        readAheadSize_ = kFirstReadAhead;
        return store_->read(row);
    }
    while (readAheadAt_ < readAhead_.size() && readAhead_[readAheadAt_].id < row) {
        ++readAheadAt_;
    }
    if (readAheadAt_ == readAhead_.size()) {
        readAhead_ = store_->readFrom(row, readAheadSize_);
        readAheadAt_ = 0;
        readAheadSize_ = std::min(readAheadSize_ * 2, kMostReadAhead);
    }
    if (readAheadAt_ == readAhead_.size() || readAhead_[readAheadAt_].id != row) {
        return std::nullopt;
    }
    return std::move(readAhead_[readAheadAt_++]);
}

LiveRecordPtr Book::find(std::string_view uid) {
    refreshIfStale();
    return findNow(uid);
}

LiveRecordPtr Book::findNow(std::string_view uid) {
    const Store::ReadTransaction transaction(*store_);
    applyChangeLog();
    if (auto known = cached(uid); known && known->state != LiveRecord::State::deleted) {
        return known->inBook() ? known : nullptr;
    }
    auto stored = store_->read(uid);
    return stored ? materialize(std::move(*stored)) : nullptr;
}

LiveRecordPtr Book::at(RowId row) {
    if (auto known = live_.find(row)) {
        return known;
    }
    if (auto stored = fetch(row)) {
        return materialize(std::move(*stored));
    }
    return locate(row, *store_);
}

LiveRecordPtr Book::at(RowId row, const std::shared_ptr<const Store>& origin) {
    refreshIfStale();
    return origin == store_ ? at(row) : locate(row, *origin);
}

// Returns the record that was in a row of [origin], by its unique id: it is in another row now, or deleted.
LiveRecordPtr Book::locate(RowId row, const Store& origin) {
    auto ref = origin.find(row);
    if (!ref) {
        ref = origin.findDeleted(row);
    }
    if (!ref) {
        throw StoreError(StoreError::Reason::refused,
                         "The address book " + file().string() +
                             " has forgotten which record stood here, so many were "
                             "deleted since: search again.");
    }
    if (auto record = findNow(ref->uid)) {
        return record;
    }
    auto record = tombstone(*ref);
    if (&origin == store_.get() && boost::icl::contains(removedRows_, row)) {
        record->removedHere = true;
    }
    return record;
}

// Returns the object for a record that was deleted; it has no values.
LiveRecordPtr Book::tombstone(const RecordRef& ref) {
    if (auto known = cached(ref.uid)) {
        return known;
    }
    auto record = std::make_shared<LiveRecord>(StoredUid(ref.uid), ref.kind);
    record->state = LiveRecord::State::deleted;
    live_.add(*record);
    return record;
}

// Lists and searches

std::vector<Book::Place> Book::records(Kind kind) {
    refreshIfStale();
    const Store::ReadTransaction transaction(*store_);
    applyChangeLog();
    std::vector<Place> places;
    const std::vector<RowId> rows = store_->rows(kind);
    places.reserve(rows.size() + added_.size());
    for (const RowId row : rows) {
        if (!removed_.contains(row)) {
            places.push_back({row, nullptr});
        }
    }
    for (const auto& record : added_) {
        if (record->kind == kind) {
            places.push_back({0, record});
        }
    }
    return places;
}

bool Book::matches(const Query& query, LiveRecord& record, Date now) {
    refreshIfStale();
    return matchesNow(query, record, now);
}

bool Book::matchesNow(const Query& query, LiveRecord& record, Date now) {
    return addressbook::matches(query, LiveRecordView(*this, record), now);
}

std::vector<Book::Place> Book::search(const Query& query, Date now) {
    refreshIfStale();
    const Store::ReadTransaction transaction(*store_);
    applyChangeLog();
    std::vector<Place> places;
    if (mentionsUndefined(query)) {
        // The database still has the values of a property that is being removed, so each record is checked as
        // this process sees it.
        for (const Kind kind : {Kind::person, Kind::group}) {
            for (const RowId row : store_->rows(kind)) {
                if (!removed_.contains(row) && matchesNow(query, *at(row), now)) {
                    places.push_back({row, nullptr});
                }
            }
        }
    } else {
        for (const RowId row : store_->search(query, now)) {
            if (!removed_.contains(row) && !changed_.contains(row)) {
                places.push_back({row, nullptr});
            }
        }
        for (const auto& [row, record] : changed_) {
            if (matchesNow(query, *record, now)) {
                places.push_back({row, record});
            }
        }
    }
    std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.row < b.row; });
    for (const auto& record : added_) {
        if (matchesNow(query, *record, now)) {
            places.push_back({0, record});
        }
    }
    return places;
}

// Values

void Book::load(LiveRecord& record) {
    if (record.cachedRow) {
        return;
    }
    if (record.state == LiveRecord::State::deleted) {
        record.cachedRow.emplace();
        return;
    }
    auto stored = fetch(record.row());
    live_.keepRow(record, stored ? std::move(*stored) : RecordRow());
}

const Value& Book::value(LiveRecord& record, std::string_view property) {
    refreshIfStale();
    return current(record, property);
}

const Value& Book::current(LiveRecord& record, std::string_view property) {
    if (property == property::kUid) {
        scratch_ = record.uid();
        return scratch_;
    }
    if (const Value* change = changeOf(record, property)) {
        return *change;
    }
    if (record.row() == 0 || isUndefined(record.kind, property)) {
        return kNone;
    }
    if (property == property::kImage) {
        scratch_ = record.inDatabase() ? store_->value(record.row(), property) : Value();
        return scratch_;
    }
    load(record);
    scratch_ = store_->value(*record.cachedRow, property);
    return scratch_;
}

std::optional<std::string_view> Book::encoded(LiveRecord& record, std::string_view property) {
    refreshIfStale();
    if (record.row() == 0 || changeOf(record, property) != nullptr || keptApart(property) ||
        isUndefined(record.kind, property)) {
        return std::nullopt;
    }
    load(record);
    return store_->encodedValue(*record.cachedRow, property);
}

std::string Book::displayName(LiveRecord& record) {
    refreshIfStale();
    return addressbook::displayName(LiveRecordView(*this, record));
}

void Book::reportDamage(const LiveRecord& record, const std::string& what) const {
    store_->reportDamage(record.cachedRow.value_or(RecordRow()), what);
}

std::map<std::string, Value> Book::values(LiveRecord& record) {
    refreshIfStale();
    std::map<std::string, Value> all;
    if (record.row() != 0) {
        load(record);
        all = store_->values(*record.cachedRow);
        all[std::string(property::kUid)] = record.uid();
        all[std::string(property::kImage)] = current(record, property::kImage);
        std::erase_if(all, [&](const auto& one) { return isUndefined(record.kind, one.first); });
    }
    for (const auto& [name, value] : record.changes) {
        all[name] = value;
    }
    std::erase_if(all, [](const auto& one) { return one.second.empty(); });
    return all;
}

void Book::set(const LiveRecordPtr& record, const std::string& property, Value value) {
    if (this->value(*record, property) == value) {
        return;
    }
    if (value.empty() && record->row() == 0) {
        record->changes.erase(property);
    } else {
        record->changes[property] = std::move(value);
    }
    ++revision_;
    touch(record);
}

void Book::touch(const LiveRecordPtr& record) {
    if (record->state == LiveRecord::State::persistent) {
        changed_[record->row()] = record;
    } else if (record->deletedElsewhere()) {
        orphaned_.try_emplace(record->uid(), record);
    }
}

// Adding and removing

bool Book::add(const LiveRecordPtr& record) {
    switch (record->state) {
    case LiveRecord::State::detached:
        record->state = LiveRecord::State::inserted;
        added_.push_back(record);
        live_.add(*record);
        return true;
    case LiveRecord::State::removed:
        record->state = LiveRecord::State::persistent;
        removed_.erase(record->row());
        if (record->unsaved()) {
            touch(record);
        }
        return true;
    case LiveRecord::State::inserted:
    case LiveRecord::State::persistent:
    case LiveRecord::State::deleted:
        break;
    }
    return false;
}

bool Book::remove(const LiveRecordPtr& record) {
    if (record->state == LiveRecord::State::inserted) {
        record->state = LiveRecord::State::detached;
        std::erase(added_, record);
        return true;
    }
    if (record->state != LiveRecord::State::persistent) {
        return false;
    }
    load(*record); // so that its values can still be read when it is deleted
    record->state = LiveRecord::State::removed;
    changed_.erase(record->row());
    removed_[record->row()] = record;
    return true;
}

// Groups

std::vector<LiveRecordPtr> Book::members(LiveRecord& group, Kind kind) {
    refreshIfStale();
    std::vector<LiveRecordPtr> found;
    if (group.inDatabase()) {
        const auto rows =
            kind == Kind::person ? store_->members(group.row()) : store_->subgroups(group.row());
        for (const RowId row : rows) {
            auto member = at(row);
            if (member->inBook() && !group.left.contains(member->uid())) {
                found.push_back(std::move(member));
            }
        }
    }
    for (const auto& member : group.joined) {
        if (member->kind == kind && member->inBook() && !contains(found, *member)) {
            found.push_back(member);
        }
    }
    return found;
}

std::vector<Book::Place> Book::inside(LiveRecord& group, Kind kind) {
    refreshIfStale();
    const Store::ReadTransaction transaction(*store_);
    applyChangeLog();
    std::vector<Place> places;
    if (!group.joined.empty() || !group.left.empty() || !group.inDatabase()) {
        for (auto& member : members(group, kind)) {
            places.push_back({member->row(), std::move(member)});
        }
        return places;
    }
    for (const RowId row :
         kind == Kind::person ? store_->members(group.row()) : store_->subgroups(group.row())) {
        if (!removed_.contains(row)) {
            places.push_back({row, nullptr});
        }
    }
    return places;
}

std::vector<LiveRecordPtr> Book::parents(const LiveRecord& record) {
    refreshIfStale();
    std::vector<LiveRecordPtr> found;
    if (!record.inBook()) {
        return found;
    }
    const auto joinedHere = [&](const LiveRecord& group) { return contains(group.joined, record); };
    if (record.row() != 0) {
        for (const RowId row : store_->parents(record.row())) {
            auto group = at(row);
            if (group->inBook() && !group->left.contains(record.uid())) {
                found.push_back(std::move(group));
            }
        }
    }
    for (const auto& [row, group] : changed_) {
        if (joinedHere(*group) && !contains(found, *group)) {
            found.push_back(group);
        }
    }
    std::sort(found.begin(), found.end(),
              [](const LiveRecordPtr& a, const LiveRecordPtr& b) { return a->row() < b->row(); });
    for (const auto& group : added_) {
        if (joinedHere(*group)) {
            found.push_back(group);
        }
    }
    return found;
}

bool Book::isMember(LiveRecord& group, const LiveRecord& member) {
    return contains(members(group, member.kind), member);
}

bool Book::ascendsTo(const LiveRecordPtr& from, const LiveRecord& target) {
    std::vector<LiveRecordPtr> open{from};
    std::set<const LiveRecord*> seenChange;
    while (!open.empty()) {
        const auto group = open.back();
        open.pop_back();
        if (group.get() == &target) {
            return true;
        }
        if (!seenChange.insert(group.get()).second) {
            continue;
        }
        for (auto& parent : parents(*group)) {
            open.push_back(std::move(parent));
        }
    }
    return false;
}

bool Book::join(const LiveRecordPtr& group, const LiveRecordPtr& member) {
    if (!member->inBook() || isMember(*group, *member)) {
        return false;
    }
    if (member->kind == Kind::group && ascendsTo(group, *member)) {
        return false;
    }
    // A member that left and joins again goes to the end, so it stays in `left` as well.
    group->joined.push_back(member);
    touch(group);
    return true;
}

bool Book::leave(const LiveRecordPtr& group, const LiveRecord& member) {
    if (!isMember(*group, member)) {
        return false;
    }
    std::erase_if(group->joined, [&](const LiveRecordPtr& one) { return one.get() == &member; });
    if (isMember(*group, member)) { // still a member, so by the database
        group->left.insert(member.uid());
    }
    touch(group);
    return true;
}

// The user's own card

LiveRecordPtr Book::me() {
    if (me_) {
        return me_->empty() ? nullptr : find(*me_);
    }
    const auto uid = store_->me();
    return uid ? find(*uid) : nullptr;
}

void Book::setMe(const LiveRecordPtr& record) {
    if (!record) {
        me_ = "";
    } else if (record->inBook()) {
        me_ = record->uid();
    }
}

// Properties

bool Book::isUndefined(Kind kind, std::string_view property) const {
    return !undefined_.empty() && std::any_of(undefined_.begin(), undefined_.end(), named(kind, property));
}

bool Book::mentionsUndefined(const Query& query) const {
    if (undefined_.empty()) {
        return false;
    }
    return anyCondition(query, [this](const Condition& condition) {
        return isUndefined(condition.kind, condition.property);
    });
}

int Book::typeOf(Kind kind, std::string_view property) {
    if (const int type = publicType(kind, property)) {
        return type;
    }
    refreshIfStale();
    const auto same = named(kind, property);
    if (const auto found = std::find_if(defined_.begin(), defined_.end(), same); found != defined_.end()) {
        return found->type;
    }
    if (isUndefined(kind, property)) {
        return 0;
    }
    const auto found = std::find_if(definitions_.begin(), definitions_.end(), same);
    return found == definitions_.end() ? 0 : found->type;
}

std::vector<std::string> Book::properties(Kind kind) {
    refreshIfStale();
    const auto builtIn = builtInNames(kind);
    std::vector<std::string> names(builtIn.begin(), builtIn.end());
    for (const auto& definition : definitions_) {
        if (definition.kind == kind && !isUndefined(kind, definition.name)) {
            names.push_back(definition.name);
        }
    }
    for (const auto& definition : defined_) {
        if (definition.kind == kind) {
            names.push_back(definition.name);
        }
    }
    return names;
}

int Book::define(Kind kind, const std::map<std::string, int>& properties) {
    ++revision_;
    for (const auto& [name, type] : properties) {
        if (name.empty() || isInternal(name) || !validType(type)) {
            return -1;
        }
    }
    int count = 0;
    for (const auto& [name, type] : properties) {
        if (typeOf(kind, name) == 0) {
            defined_.push_back({kind, name, type});
            ++count;
        }
    }
    return count;
}

int Book::undefine(Kind kind, const std::vector<std::string>& properties) {
    ++revision_;
    int count = 0;
    for (const auto& name : properties) {
        if (publicType(kind, name) != 0 || typeOf(kind, name) == 0) {
            continue;
        }
        const auto same = named(kind, name);
        if (std::erase_if(defined_, same) == 0) {
            undefined_.push_back(*std::find_if(definitions_.begin(), definitions_.end(), same));
        }
        for (const auto& record : live_.all()) {
            if (record->kind == kind) {
                record->changes.erase(name);
            }
        }
        ++count;
    }
    return count;
}

} // namespace addressbook
