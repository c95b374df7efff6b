// Saving, and refreshing after saves of other processes.

#include "frameworks/AddressBook/model/book.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace addressbook {

namespace {

bool contains(const std::vector<PropertyDefinition>& definitions, const PropertyDefinition& one) {
    return std::any_of(definitions.begin(), definitions.end(), [&](const PropertyDefinition& other) {
        return other.kind == one.kind && other.name == one.name;
    });
}

// Drops the record's unsaved changes.
void clean(LiveRecord& record) {
    record.changes.clear();
    record.joined.clear();
    record.left.clear();
}

} // namespace

bool Book::changed() const {
    return !added_.empty() || !changed_.empty() || !removed_.empty() || !orphaned_.empty() || me_ ||
           !defined_.empty() || !undefined_.empty();
}

ChangeSet Book::changes(Date now) const {
    ChangeSet set;
    set.time = now;
    set.definitions = defined_;
    set.removedDefinitions = undefined_;
    const auto memberships = [&set](const LiveRecord& group) {
        for (const auto& uid : group.left) {
            set.memberships.push_back({.group = group.uid(), .member = uid, .add = false});
        }
        for (const auto& member : group.joined) {
            if (member->inBook() || member->deletedElsewhere()) { // the latter is reported by the save
                set.memberships.push_back({.group = group.uid(), .member = member->uid(), .add = true});
            }
        }
    };
    for (const auto& record : added_) {
        set.records.push_back(
            {.uid = record->uid(), .kind = record->kind, .insert = true, .values = record->changes});
        memberships(*record);
    }
    const auto update = [&](const LiveRecordPtr& record) {
        if (!record->changes.empty()) {
            set.records.push_back(
                {.uid = record->uid(), .kind = record->kind, .insert = false, .values = record->changes});
        }
        memberships(*record);
    };
    for (const auto& [row, record] : changed_) {
        update(record);
    }
    for (const auto& [uid, record] : orphaned_) {
        update(record);
    }
    for (const auto& [row, record] : removed_) {
        set.removed.push_back(record->uid());
    }
    if (me_) {
        const auto mine = cached(*me_);
        const bool tells = !mine || mine->inBook() || mine->deletedElsewhere();
        set.me = tells ? *me_ : "";
    }
    return set;
}

SaveResult Book::save(Date now) {
    refresh();
    const ChangeSet set = changes(now);
    SaveResult result;
    if (!set.empty()) {
        result = store_->save(set);
    }
    applySaveResult(result);
    // No other save came in between, so that nothing need be refreshed.
    if (result.change == seenChange_ + 1) {
        seenChange_ = result.change;
    }
    return result;
}

void Book::applySaveResult(const SaveResult& result) {
    ++revision_;
    dropReadAhead();
    auto place = result.insertedRows.begin();
    for (const auto& record : std::exchange(added_, {})) { // inserted in this order
        clean(*record);
        record->cachedRow.reset();
        record->state = LiveRecord::State::persistent;
        live_.setRow(*record, *place++);
    }
    for (const auto& uid : result.updated) { // also records that only lost a removed property or a member
        if (const auto record = cached(uid); record && record->inDatabase()) {
            record->cachedRow.reset();
        }
    }
    for (const auto& uid : result.missing) { // another process has just deleted them
        if (const auto record = cached(uid); record && record->inDatabase()) {
            record->state = LiveRecord::State::deleted;
        }
    }
    for (const auto& [row, record] : std::exchange(changed_, {})) {
        clean(*record);
        if (record->inDatabase()) {
            record->cachedRow.reset();
        }
    }
    for (const auto& [uid, record] : std::exchange(orphaned_, {})) {
        clean(*record);
    }
    for (const auto& [row, record] : std::exchange(removed_, {})) {
        record->state = LiveRecord::State::deleted;
        record->removedHere = true;
        record->joined.clear(); // a deleted group has no members
        record->left.clear();
        removedRows_.insert(row);
    }
    me_.reset();
    if (!defined_.empty() || !undefined_.empty()) {
        definitions_ = store_->definitions();
    }
    defined_.clear();
    undefined_.clear();
}

// Saves of other processes

void Book::refresh() {
    const auto generation = generation_.load(std::memory_order_acquire);
    if (store_->moved() && std::filesystem::exists(store_->file())) {
        reopen();
    }
    applyChangeLog();
    seenGeneration_ = generation;
}

// Reads the saves since the last one seen from the change log, and reloads the records in memory that they
// changed.
void Book::applyChangeLog() {
    const auto newest = store_->lastChange();
    if (newest == seenChange_) {
        return;
    }
    reloadDefinitions();
    dropReadAhead();
    ++revision_;
    bool all = newest < seenChange_; // an older state of the book was restored
    std::unordered_set<std::string> reloaded;
    for (const auto& change : store_->changesSince(seenChange_)) {
        all = all || change.tellsNothing();
        for (const auto* uids : {&change.inserted, &change.updated, &change.deleted}) {
            for (const auto& uid : *uids) {
                if (const auto record = cached(uid); record && reloaded.insert(uid).second) {
                    reload(record);
                }
            }
        }
    }
    if (all) {
        reloadAll();
    }
    seenChange_ = newest;
}

void Book::reloadDefinitions() {
    definitions_ = store_->definitions();
    std::erase_if(undefined_, [this](const auto& one) { return !contains(definitions_, one); });
    // A property that is being removed may be defined again with another type, and then stays in defined_.
    std::erase_if(defined_, [this](const auto& one) {
        return contains(definitions_, one) && !contains(undefined_, one);
    });
}

// Opens the file that has taken the database's place, and reloads everything.
void Book::reopen() {
    store_ = std::make_shared<Store>(store_->file().parent_path());
    ++revision_;
    dropReadAhead();
    live_.forgetRows();
    removedRows_.clear();
    seenChange_ = store_->lastChange();
    reloadDefinitions();
    reloadAll();
}

void Book::reloadAll() {
    for (const auto& record : live_.all()) { // which keeps every record alive meanwhile
        reload(record);
    }
}

// Updates state and row of a record that is or was in the database, and drops its cached values.
void Book::reload(const LiveRecordPtr& record) {
    ++revision_;
    if (record->state == LiveRecord::State::detached || record->state == LiveRecord::State::inserted) {
        return;
    }
    const auto unfile = [&](auto& records) {
        const auto found = records.find(record->row());
        if (found != records.end() && found->second == record) {
            records.erase(found);
        }
    };
    unfile(changed_);
    unfile(removed_);
    const bool wasOrphaned = orphaned_.erase(record->uid()) != 0;
    const auto ref = store_->find(record->uid());
    if (!ref) {
        const bool loses =
            wasOrphaned || (record->state == LiveRecord::State::persistent && record->unsaved());
        if (loses) {
            orphaned_.try_emplace(record->uid(), record);
        }
        record->state = LiveRecord::State::deleted;
        return;
    }
    if (record->state == LiveRecord::State::deleted) { // another process has restored it
        if (!wasOrphaned) {
            clean(*record);
        }
        record->state = LiveRecord::State::persistent;
        record->removedHere = false;
    }
    record->cachedRow.reset();
    live_.setRow(*record, ref->row);
    if (record->state == LiveRecord::State::removed) {
        removed_[record->row()] = record;
    } else if (record->unsaved()) {
        changed_[record->row()] = record;
    }
}

} // namespace addressbook
