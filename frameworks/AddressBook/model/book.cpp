// In this order: cards, lists and searches, values, adding and removing, groups, the user's own card,
// properties. Saving, and taking notice of what others saved, are in book_save.cpp.

#include "frameworks/AddressBook/model/book.h"

#include <algorithm>
#include <utility>

namespace addressbook {

namespace {

// So many records keep their stored values in memory; older ones read them again.
constexpr std::size_t kLoadedLimit = 1024;

// A walk that goes on in order reads so many records at once: few at first, as it may end soon.
constexpr std::size_t kFirstAhead = 16;
constexpr std::size_t kMostAhead = 256;

const Value kNone;

// A record for queries: its values as this process sees them.
class CardView : public RecordView {
  public:
    CardView(Book& book, Card& card) : book_(book), card_(card) {}
    Kind kind() const override { return card_.kind; }
    const Value& value(std::string_view property) const override { return book_.current(card_, property); }

  private:
    Book& book_;
    Card& card_;
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

// The unsaved value of a property, which is no value when it was removed; null when it was not changed.
const Value* changeOf(const Card& card, std::string_view property) {
    if (card.changes.empty())
        return nullptr;
    const auto change = card.changes.find(std::string(property));
    return change == card.changes.end() ? nullptr : &change->second;
}

// Whether the database keeps a property beside the card.
bool keptApart(std::string_view property) {
    return property == property::kUid || property == property::kCreation ||
           property == property::kModification || property == property::kImage;
}

bool contains(const std::vector<CardPtr>& cards, const Card& one) {
    return std::any_of(cards.begin(), cards.end(), [&](const CardPtr& card) { return card.get() == &one; });
}

} // namespace

int publicType(Kind kind, std::string_view property) {
    return isInternal(property) ? 0 : builtInType(kind, property);
}

std::unique_ptr<Card> makeCard(Kind kind) {
    auto card = std::make_unique<Card>();
    card->uid = newUid(kind);
    card->kind = kind;
    const Date now = currentTime();
    card->changes[std::string(property::kCreation)] = now;
    card->changes[std::string(property::kModification)] = now;
    return card;
}

std::shared_ptr<Book> Book::open() {
    return std::make_shared<Book>(std::make_unique<Store>(Store::defaultFolder()));
}

std::atomic<std::uint64_t> Book::stirred_{0};

Book::Book(std::unique_ptr<Store> store)
    : store_(std::move(store)), noticed_(stirred_.load()), seen_(store_->lastChange()),
      definitions_(store_->definitions()) {}

// Cards

CardPtr Book::create(Kind kind) {
    return own(makeCard(kind).release());
}

CardPtr Book::own(Card* card) {
    CardPtr owned(card, [book = weak_from_this()](Card* last) {
        if (auto owner = book.lock())
            owner->forget(*last);
        delete last;
    });
    file(owned);
    if (owned->row != 0)
        rows_[owned->row] = owned;
    return owned;
}

// Makes this the card of its unique id.
void Book::file(const CardPtr& card) {
    const auto [place, fresh] = cards_.try_emplace(card->uid, card);
    if (fresh)
        return;
    cards_.erase(place); // its key belongs to another card
    cards_.emplace(card->uid, card);
}

void Book::forget(const Card& card) {
    // A newer card may have taken the place of one that is gone.
    if (auto found = cards_.find(card.uid); found != cards_.end() && found->second.expired())
        cards_.erase(found);
    if (auto found = rows_.find(card.row); found != rows_.end() && found->second.expired())
        rows_.erase(found);
}

CardPtr Book::live(std::string_view uid) const {
    const auto found = cards_.find(uid);
    return found == cards_.end() ? nullptr : found->second.lock();
}

CardPtr Book::card(RecordRow record) {
    if (auto known = live(record.uid)) {
        if (known->standing == Card::Standing::gone) // deleted, and then brought back by another process
            renew(known);
        return known;
    }
    auto made = std::make_unique<Card>();
    made->uid = std::move(record.uid);
    made->kind = record.kind;
    made->standing = Card::Standing::stored;
    made->row = record.id;
    auto owned = own(made.release());
    keep(*owned, std::move(record));
    return owned;
}

// Reads a record. Whoever asks for one that follows closely on the one before is on a walk, and will ask for
// the next ones.
std::optional<RecordRow> Book::fetch(RowId row) {
    const bool walks = row > walked_ && row - walked_ <= 4;
    walked_ = row;
    if (!walks) {
        ahead_.clear();
        aheadNext_ = kFirstAhead;
        return store_->read(row);
    }
    while (!ahead_.empty() && ahead_.front().id < row)
        ahead_.pop_front();
    if (ahead_.empty()) {
        for (RecordRow& record : store_->readFrom(row, aheadNext_))
            ahead_.push_back(std::move(record));
        aheadNext_ = std::min(aheadNext_ * 2, kMostAhead);
    }
    if (ahead_.empty() || ahead_.front().id != row)
        return std::nullopt;
    std::optional<RecordRow> record(std::move(ahead_.front()));
    ahead_.pop_front();
    return record;
}

CardPtr Book::find(std::string_view uid) {
    const Store::Reading reading(*store_);
    refresh();
    if (auto known = live(uid); known && known->standing != Card::Standing::gone)
        return known->inBook() ? known : nullptr;
    auto record = store_->read(uid);
    return record ? card(std::move(*record)) : nullptr;
}

CardPtr Book::at(RowId row, Kind kind) {
    if (const auto found = rows_.find(row); found != rows_.end())
        if (auto known = found->second.lock())
            return known;
    if (auto record = fetch(row))
        return card(std::move(*record));
    if (const auto gone = gone_.find(row); gone != gone_.end()) {
        // The list may be one of both kinds, but an id tells its own.
        const std::string& uid = gone->second;
        auto known = live(uid);
        return known ? known : lost(uid, uid.ends_with(":ABGroup") ? Kind::group : kind);
    }
    return lost(newUid(kind), kind);
}

CardPtr Book::at(RowId row, Kind kind, int edition) {
    notice();
    return edition == edition_ ? at(row, kind) : lost(newUid(kind), kind);
}

// A card for a record that the address book does not have any more.
CardPtr Book::lost(const std::string& uid, Kind kind) {
    auto card = std::make_unique<Card>();
    card->uid = uid;
    card->kind = kind;
    card->standing = Card::Standing::gone;
    return own(card.release());
}

// Lists and searches

std::vector<Book::Place> Book::records(Kind kind) {
    refresh();
    std::vector<Place> places;
    for (const RowId row : store_->rows(kind))
        if (!removed_.contains(row))
            places.push_back({row, nullptr});
    for (const auto& card : added_)
        if (card->kind == kind)
            places.push_back({0, card});
    return places;
}

bool Book::matches(const Query& query, Card& card, Date now) {
    notice();
    return matchesNow(query, card, now);
}

bool Book::matchesNow(const Query& query, Card& card, Date now) {
    return addressbook::matches(query, CardView(*this, card), now);
}

std::vector<Book::Place> Book::search(const Query& query, Date now) {
    const Store::Reading reading(*store_);
    refresh();
    std::vector<Place> places;
    if (mentionsDiscarded(query)) {
        // The database still holds values that are to be deleted: only the view of this process tells the
        // truth.
        for (const Kind kind : {Kind::person, Kind::group})
            for (const RowId row : store_->rows(kind))
                if (!removed_.contains(row) && matchesNow(query, *at(row, kind), now))
                    places.push_back({row, nullptr});
    } else {
        for (const RowId row : store_->search(query, now))
            if (!removed_.contains(row) && !changed_.contains(row))
                places.push_back({row, nullptr});
        for (const auto& [row, card] : changed_)
            if (matchesNow(query, *card, now))
                places.push_back({row, card});
    }
    std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.row < b.row; });
    for (const auto& card : added_)
        if (matchesNow(query, *card, now))
            places.push_back({0, card});
    return places;
}

// Values

void Book::load(Card& card) {
    if (card.read)
        return;
    if (card.standing == Card::Standing::gone) {
        card.read.emplace();
        return;
    }
    auto record = fetch(card.row);
    keep(card, record ? std::move(*record) : RecordRow());
}

void Book::keep(Card& card, RecordRow record) {
    card.read = std::move(record);
    loaded_.push_back(card.weak_from_this());
    while (loaded_.size() > kLoadedLimit) {
        if (const auto oldest = loaded_.front().lock(); oldest && oldest.get() != &card)
            oldest->read.reset();
        loaded_.pop_front();
    }
}

const Value& Book::value(Card& card, std::string_view property) {
    notice();
    return current(card, property);
}

const Value& Book::current(Card& card, std::string_view property) {
    if (property == property::kUid) {
        scratch_ = card.uid;
        return scratch_;
    }
    if (const Value* change = changeOf(card, property))
        return *change;
    if (card.row == 0 || discarded(card.kind, property))
        return kNone;
    if (property == property::kImage) {
        scratch_ = card.inDatabase() ? store_->value(card.row, property) : Value();
        return scratch_;
    }
    load(card);
    scratch_ = store_->value(*card.read, property);
    return scratch_;
}

std::optional<std::string_view> Book::encoded(Card& card, std::string_view property) {
    notice();
    if (card.row == 0 || changeOf(card, property) != nullptr || keptApart(property) ||
        discarded(card.kind, property))
        return std::nullopt;
    load(card);
    return store_->encodedValue(*card.read, property);
}

void Book::damaged(const Card& card, const std::string& what) const {
    store_->damaged(card.read.value_or(RecordRow()), what);
}

std::map<std::string, Value> Book::values(Card& card) {
    notice();
    std::map<std::string, Value> all;
    if (card.row != 0) {
        load(card);
        all = store_->values(*card.read);
        all[std::string(property::kUid)] = card.uid;
        all[std::string(property::kImage)] = current(card, property::kImage);
        std::erase_if(all, [&](const auto& one) { return discarded(card.kind, one.first); });
    }
    for (const auto& [name, value] : card.changes)
        all[name] = value;
    std::erase_if(all, [](const auto& one) { return one.second.empty(); });
    return all;
}

void Book::set(const CardPtr& card, const std::string& property, Value value) {
    if (this->value(*card, property) == value)
        return;
    if (value.empty() && card->row == 0)
        card->changes.erase(property);
    else
        card->changes[property] = std::move(value);
    ++state_;
    touch(card);
}

void Book::touch(const CardPtr& card) {
    if (card->standing == Card::Standing::stored)
        changed_[card->row] = card;
}

// Adding and removing

bool Book::add(const CardPtr& card) {
    switch (card->standing) {
    case Card::Standing::loose:
        card->standing = Card::Standing::added;
        added_.push_back(card);
        file(card);
        return true;
    case Card::Standing::removed:
        card->standing = Card::Standing::stored;
        removed_.erase(card->row);
        if (card->unsaved())
            touch(card);
        return true;
    case Card::Standing::added:
    case Card::Standing::stored:
    case Card::Standing::gone:
        break;
    }
    return false;
}

bool Book::remove(const CardPtr& card) {
    if (card->standing == Card::Standing::added) {
        card->standing = Card::Standing::loose;
        std::erase(added_, card);
        return true;
    }
    if (card->standing != Card::Standing::stored)
        return false;
    load(*card); // so that whoever still holds the record can read it
    card->standing = Card::Standing::removed;
    changed_.erase(card->row);
    removed_[card->row] = card;
    return true;
}

// Groups

std::vector<CardPtr> Book::members(Card& group, Kind kind) {
    notice();
    std::vector<CardPtr> found;
    if (group.inDatabase()) {
        const auto rows = kind == Kind::person ? store_->members(group.row) : store_->subgroups(group.row);
        for (const RowId row : rows) {
            auto member = at(row, kind);
            if (member->inBook() && !group.left.contains(member->uid))
                found.push_back(std::move(member));
        }
    }
    for (const auto& member : group.joined)
        if (member->kind == kind && member->inBook() && !contains(found, *member))
            found.push_back(member);
    return found;
}

std::vector<CardPtr> Book::parents(const Card& card) {
    notice();
    std::vector<CardPtr> found;
    if (!card.inBook())
        return found;
    const auto joinedHere = [&](const Card& group) { return contains(group.joined, card); };
    if (card.row != 0)
        for (const RowId row : store_->parents(card.row)) {
            auto group = at(row, Kind::group);
            if (group->inBook() && !group->left.contains(card.uid))
                found.push_back(std::move(group));
        }
    for (const auto& [row, group] : changed_)
        if (joinedHere(*group) && !contains(found, *group))
            found.push_back(group);
    std::sort(found.begin(), found.end(), [](const CardPtr& a, const CardPtr& b) { return a->row < b->row; });
    for (const auto& group : added_)
        if (joinedHere(*group))
            found.push_back(group);
    return found;
}

bool Book::isMember(Card& group, const Card& member) {
    return contains(members(group, member.kind), member);
}

bool Book::ascendsTo(const CardPtr& from, const Card& target) {
    std::vector<CardPtr> open{from};
    std::set<const Card*> seen;
    while (!open.empty()) {
        const auto group = open.back();
        open.pop_back();
        if (group.get() == &target)
            return true;
        if (!seen.insert(group.get()).second)
            continue;
        for (auto& parent : parents(*group))
            open.push_back(std::move(parent));
    }
    return false;
}

bool Book::join(const CardPtr& group, const CardPtr& member) {
    if (!member->inBook() || isMember(*group, *member))
        return false;
    if (member->kind == Kind::group && ascendsTo(group, *member))
        return false;
    // One that left and comes back stands behind the others, so it stays in the list of those that left.
    group->joined.push_back(member);
    touch(group);
    return true;
}

bool Book::leave(const CardPtr& group, const Card& member) {
    if (!isMember(*group, member))
        return false;
    std::erase_if(group->joined, [&](const CardPtr& one) { return one.get() == &member; });
    if (isMember(*group, member)) // the database says so
        group->left.insert(member.uid);
    touch(group);
    return true;
}

// The user's own card

CardPtr Book::me() {
    if (me_)
        return me_->empty() ? nullptr : find(*me_);
    const auto uid = store_->me();
    return uid ? find(*uid) : nullptr;
}

void Book::setMe(const CardPtr& card) {
    if (!card)
        me_ = "";
    else if (card->inBook())
        me_ = card->uid;
}

// Properties

bool Book::discarded(Kind kind, std::string_view property) const {
    return std::any_of(undefined_.begin(), undefined_.end(), named(kind, property));
}

bool Book::mentionsDiscarded(const Query& query) const {
    if (undefined_.empty())
        return false;
    if (const auto* condition = std::get_if<Condition>(&query.node))
        return discarded(condition->kind, condition->property);
    const auto& children = std::get<Query::Compound>(query.node).children;
    return std::any_of(children.begin(), children.end(),
                       [this](const Query& child) { return mentionsDiscarded(child); });
}

int Book::typeOf(Kind kind, std::string_view property) {
    if (const int type = publicType(kind, property))
        return type;
    notice();
    const auto same = named(kind, property);
    if (const auto found = std::find_if(defined_.begin(), defined_.end(), same); found != defined_.end())
        return found->type;
    if (discarded(kind, property))
        return 0;
    const auto found = std::find_if(definitions_.begin(), definitions_.end(), same);
    return found == definitions_.end() ? 0 : found->type;
}

std::vector<std::string> Book::properties(Kind kind) {
    notice();
    std::vector<std::string> names;
    for (const auto& row : builtInProperties())
        if (publicType(kind, row.name) != 0)
            names.emplace_back(row.name);
    for (const auto& definition : definitions_)
        if (definition.kind == kind && !discarded(kind, definition.name))
            names.push_back(definition.name);
    for (const auto& definition : defined_)
        if (definition.kind == kind)
            names.push_back(definition.name);
    return names;
}

int Book::define(Kind kind, const std::map<std::string, int>& properties) {
    ++state_;
    for (const auto& [name, type] : properties)
        if (name.empty() || isInternal(name) || !validType(type))
            return -1;
    int count = 0;
    for (const auto& [name, type] : properties)
        if (typeOf(kind, name) == 0) {
            defined_.push_back({kind, name, type});
            ++count;
        }
    return count;
}

int Book::undefine(Kind kind, const std::vector<std::string>& properties) {
    ++state_;
    int count = 0;
    for (const auto& name : properties) {
        if (publicType(kind, name) != 0 || typeOf(kind, name) == 0)
            continue;
        const auto same = named(kind, name);
        if (std::erase_if(defined_, same) == 0)
            undefined_.push_back(*std::find_if(definitions_.begin(), definitions_.end(), same));
        for (const auto& [uid, weak] : cards_)
            if (const auto card = weak.lock(); card && card->kind == kind)
                card->changes.erase(name);
        ++count;
    }
    return count;
}

} // namespace addressbook
