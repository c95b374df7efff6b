// Saving, and taking notice of what others saved.

#include "frameworks/AddressBook/model/book.h"

#include <algorithm>
#include <utility>

namespace addressbook {

namespace {

bool contains(const std::vector<PropertyDefinition>& definitions, const PropertyDefinition& one) {
    return std::any_of(definitions.begin(), definitions.end(), [&](const PropertyDefinition& other) {
        return other.kind == one.kind && other.name == one.name;
    });
}

// Whether another process deleted it.
bool goneElsewhere(const Card& card) {
    return card.standing == Card::Standing::gone && !card.removedHere;
}

// Forgets what is unsaved.
void clean(Card& card) {
    card.changes.clear();
    card.joined.clear();
    card.left.clear();
}

} // namespace

bool Book::changed() const {
    return !added_.empty() || !changed_.empty() || !removed_.empty() || !lost_.empty() || me_ ||
           !defined_.empty() || !undefined_.empty();
}

ChangeSet Book::changes(Date now) const {
    ChangeSet set;
    set.time = now;
    set.definitions = defined_;
    set.removedDefinitions = undefined_;
    const auto memberships = [&set](const Card& group) {
        for (const auto& uid : group.left)
            set.memberships.push_back({group.uid, uid, false});
        for (const auto& member : group.joined)
            if (member->inBook() || goneElsewhere(*member)) // which the save tells
                set.memberships.push_back({group.uid, member->uid, true});
    };
    for (const auto& card : added_) {
        set.records.push_back({card->uid, card->kind, true, card->changes});
        memberships(*card);
    }
    const auto update = [&](const CardPtr& card) {
        if (!card->changes.empty())
            set.records.push_back({card->uid, card->kind, false, card->changes});
        memberships(*card);
    };
    for (const auto& [row, card] : changed_)
        update(card);
    for (const auto& card : lost_)
        update(card);
    for (const auto& [row, card] : removed_)
        set.removed.push_back(card->uid);
    if (me_) {
        const auto own = live(*me_);
        const bool tells = !own || own->inBook() || goneElsewhere(*own);
        set.me = tells ? *me_ : "";
    }
    return set;
}

SaveResult Book::save(Date now) {
    catchUp();
    const ChangeSet set = changes(now);
    SaveResult result;
    if (!set.empty())
        result = store_->save(set);
    settle(result);
    // Others saved nothing in between: what this save did is known.
    if (result.change == seen_ + 1)
        seen_ = result.change;
    return result;
}

void Book::settle(const SaveResult& result) {
    ++state_;
    ahead_.clear();
    auto place = result.insertedRows.begin();
    for (const auto& card : std::exchange(added_, {})) { // inserted in this order
        clean(*card);
        card->read.reset();
        card->standing = Card::Standing::stored;
        card->row = *place++;
        rows_[card->row] = card;
    }
    for (const auto& uid : result.updated) // also by a property that went, or by a member
        if (const auto card = live(uid); card && card->inDatabase())
            card->read.reset();
    for (const auto& uid : result.missing) // deleted elsewhere a moment ago
        if (const auto card = live(uid); card && card->inDatabase()) {
            card->standing = Card::Standing::gone;
            gone_[card->row] = uid;
        }
    for (const auto& [row, card] : std::exchange(changed_, {})) {
        clean(*card);
        if (card->inDatabase())
            card->read.reset();
    }
    for (const auto& card : std::exchange(lost_, {}))
        clean(*card);
    for (const auto& [row, card] : std::exchange(removed_, {})) {
        card->standing = Card::Standing::gone;
        card->removedHere = true;
        card->joined.clear(); // a group that is gone has no members
        card->left.clear();
        gone_[row] = card->uid;
    }
    me_.reset();
    if (!defined_.empty() || !undefined_.empty())
        definitions_ = store_->definitions();
    defined_.clear();
    undefined_.clear();
}

// What others saved

void Book::catchUp() {
    const auto stirred = stirred_.load(std::memory_order_acquire);
    if (store_->moved() && std::filesystem::exists(store_->file()))
        reopen();
    refresh();
    noticed_ = stirred;
}

// Takes notice of what was saved since, here and elsewhere: what is in memory of those records is out of
// date.
void Book::refresh() {
    const auto newest = store_->lastChange();
    if (newest == seen_)
        return;
    takeDefinitions();
    ahead_.clear();
    ++state_;
    bool all = newest < seen_; // an older state was restored
    std::unordered_set<std::string> renewed;
    for (const auto& change : store_->changesSince(seen_)) {
        all = all || change.tellsNothing();
        for (const auto* uids : {&change.inserted, &change.updated, &change.deleted})
            for (const auto& uid : *uids)
                if (const auto card = live(uid); card && renewed.insert(uid).second)
                    renew(card);
    }
    if (all)
        renewAll();
    seen_ = newest;
}

void Book::takeDefinitions() {
    definitions_ = store_->definitions();
    std::erase_if(undefined_, [this](const auto& one) { return !contains(definitions_, one); });
    // One that is removed here may come back with another type.
    std::erase_if(defined_, [this](const auto& one) {
        return contains(definitions_, one) && !contains(undefined_, one);
    });
}

// Another file is in the database's place.
void Book::reopen() {
    store_ = std::make_unique<Store>(store_->file().parent_path());
    ++edition_;
    ++state_;
    ahead_.clear();
    rows_.clear();
    seen_ = store_->lastChange();
    takeDefinitions();
    renewAll();
    gone_.clear();
}

void Book::renewAll() {
    std::vector<CardPtr> all; // so that none goes while others take its row
    for (const auto& [uid, weak] : cards_)
        if (auto card = weak.lock())
            all.push_back(std::move(card));
    for (const auto& card : all)
        renew(card);
}

// Brings a card that is or was in the database up to date with it.
void Book::renew(const CardPtr& card) {
    ++state_;
    if (card->standing == Card::Standing::loose || card->standing == Card::Standing::added)
        return;
    const auto unfile = [&](auto& cards) {
        const auto found = cards.find(card->row);
        if (found != cards.end() && found->second == card)
            cards.erase(found);
    };
    unfile(changed_);
    unfile(removed_);
    const bool wasLost = std::erase(lost_, card) != 0;
    const auto ref = store_->find(card->uid);
    if (!ref) {
        const bool loses = wasLost || (card->standing == Card::Standing::stored && card->unsaved());
        if (loses)
            lost_.push_back(card);
        card->standing = Card::Standing::gone;
        if (card->row != 0)
            gone_[card->row] = card->uid;
        return;
    }
    if (card->standing == Card::Standing::gone) { // it was brought back
        if (!wasLost)
            clean(*card);
        card->standing = Card::Standing::stored;
        card->removedHere = false;
    }
    card->read.reset();
    if (const auto old = rows_.find(card->row);
        card->row != ref->row && old != rows_.end() && old->second.lock() == card)
        rows_.erase(old);
    card->row = ref->row;
    rows_[card->row] = card;
    if (card->standing == Card::Standing::removed)
        removed_[card->row] = card;
    else if (card->unsaved())
        changed_[card->row] = card;
}

} // namespace addressbook
