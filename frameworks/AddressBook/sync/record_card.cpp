#include "frameworks/AddressBook/sync/record_card.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>
#include <utility>

namespace addressbook::sync {

namespace {

using vcard::Card;

// Whether a card does not hold the property, so that it stays as the record has it.
bool isOfRecord(std::string_view property) {
    return property == property::kUid || property == property::kCreation ||
           property == property::kModification || property == property::kDistribution ||
           property == property::kHomePage;
}

std::vector<RowId> membersOf(const Store& store, RowId group) {
    std::vector<RowId> rows = store.members(group);
    const std::vector<RowId> groups = store.subgroups(group);
    rows.insert(rows.end(), groups.begin(), groups.end());
    return rows;
}

// Takes the members that are not in the address book out of unknown lines.
std::vector<std::string> takeWaiting(Card& card) {
    std::vector<std::string> members;
    const auto found = card.values.find(std::string(property::kUnknownLines));
    auto* lines = found == card.values.end() ? nullptr : found->second.as<Array>();
    if (!lines) {
        return members;
    }
    for (auto at = lines->begin(); at != lines->end();) {
        const auto* line = at->as<std::string>();
        if (auto member = line ? vcard::memberIn(*line) : std::nullopt) {
            members.push_back(*std::move(member));
            at = lines->erase(at);
        } else {
            ++at;
        }
    }
    if (lines->empty()) {
        card.values.erase(found);
    }
    return members;
}

// Adds lines to a card's unknown lines.
void keepWaiting(Card& card, const std::vector<std::string>& members) {
    if (members.empty()) {
        return;
    }
    Value& value = card.values[std::string(property::kUnknownLines)];
    if (value.empty()) {
        value = Array();
    }
    for (const std::string& member : members) {
        value.as<Array>()->emplace_back(vcard::memberLine(member));
    }
}

// Knows which record a group's card means.
class Members {
  public:
    Members(const Store& store, const ChangeSet& changes) : store_(store) {
        for (const RecordChange& change : changes.records) {
            if (change.insert) {
                inserted_.insert(change.uid);
            }
        }
        removed_.insert(changes.removed.begin(), changes.removed.end());
    }

    // Returns its unique id; nothing when it is not in the address book.
    std::optional<std::string> find(const std::string& member) const {
        const std::string uuid = vcard::uuidOf(member);
        for (const char* kind : {":ABPerson", ":ABGroup"}) {
            if (std::string uid = uuid + kind;
                inserted_.contains(uid) || (store_.find(uid) && !removed_.contains(uid))) {
                return uid;
            }
        }
        return std::nullopt;
    }

  private:
    const Store& store_;
    std::unordered_set<std::string> inserted_, removed_;
};

// Adds the memberships by which the group has the members of [card], and keeps the others in it.
void setMembers(const Store& store, const std::string& group, Card& card, ChangeSet& changes) {
    std::vector<std::string> names = takeWaiting(card);
    names.insert(names.begin(), card.memberUids.begin(), card.memberUids.end());
    std::set<std::string> before, now;
    if (const auto record = store.find(group)) {
        for (const RowId row : membersOf(store, record->row)) {
            if (const auto member = store.find(row)) {
                before.insert(member->uid);
            }
        }
    }
    const Members members(store, changes);
    std::vector<std::string> waiting;
    for (const std::string& name : names) {
        if (const auto uid = members.find(name)) {
            if (now.insert(*uid).second && !before.contains(*uid)) {
                changes.memberships.push_back({group, *uid, true});
            }
        } else {
            waiting.push_back(name);
        }
    }
    for (const std::string& uid : before) {
        if (!now.contains(uid)) {
            changes.memberships.push_back({group, uid, false});
        }
    }
    keepWaiting(card, waiting);
}

} // namespace

std::optional<Card> cardOf(const Store& store, std::string_view uid) {
    const auto record = store.read(uid);
    if (!record) {
        return std::nullopt;
    }
    Card card;
    card.kind = record->kind;
    card.uid = record->uid.text();
    card.values = store.values(*record);
    if (Value image = store.value(record->id, property::kImage); !image.empty()) {
        card.values[std::string(property::kImage)] = std::move(image);
    }
    if (record->kind == Kind::group) {
        for (const RowId row : membersOf(store, record->id)) {
            if (const auto member = store.find(row)) {
                card.memberUids.push_back(
                    vcard::memberName(member->uid, store.value(row, property::kUnknownLines)));
            }
        }
        for (std::string& member : takeWaiting(card)) {
            card.memberUids.push_back(std::move(member));
        }
    }
    return card;
}

void setRecord(const Store& store, const std::string& uid, const Card& card, ChangeSet& changes) {
    Card wanted = card;
    if (card.kind == Kind::group) {
        setMembers(store, uid, wanted, changes);
    }
    const auto record = store.read(uid);
    RecordChange change{uid, card.kind, !record, {}};
    std::map<std::string, Value> current = record ? store.values(*record) : std::map<std::string, Value>();
    if (record) {
        if (Value image = store.value(record->id, property::kImage); !image.empty()) {
            current[std::string(property::kImage)] = std::move(image);
        }
    }
    for (const auto& [property, value] : current) {
        if (!isOfRecord(property) && !wanted.values.contains(property)) {
            change.values[property] = Value();
        }
    }
    for (const auto& [property, value] : wanted.values) {
        const auto found = current.find(property);
        if (!isOfRecord(property) && (found == current.end() || !(found->second == value))) {
            change.values[property] = value;
        }
    }
    if (change.insert || !change.values.empty()) {
        changes.records.push_back(std::move(change));
    }
}

void joinWaiting(const Store& store, ChangeSet& changes) {
    std::unordered_set<std::string> arrived;
    std::map<std::string, std::size_t> changed; // groups -> where [changes] changes them
    for (std::size_t at = 0; at < changes.records.size(); ++at) {
        const RecordChange& change = changes.records[at];
        if (change.insert) {
            arrived.insert(change.uid);
        }
        if (change.kind == Kind::group) {
            changed.emplace(change.uid, at);
        }
    }
    if (arrived.empty()) {
        return;
    }
    const std::string name(property::kUnknownLines);
    const Members members(store, changes);
    const std::unordered_set<std::string> removed(changes.removed.begin(), changes.removed.end());
    const auto join = [&](const std::string& group, const Value& lines) {
        Card card;
        if (!lines.empty()) {
            card.values[name] = lines;
        }
        std::vector<std::string> left;
        bool joined = false;
        for (const std::string& member : takeWaiting(card)) {
            const auto uid = members.find(member);
            if (uid && arrived.contains(*uid) && *uid != group) {
                changes.memberships.push_back({group, *uid, true});
                joined = true;
            } else {
                left.push_back(member);
            }
        }
        if (!joined) {
            return;
        }
        keepWaiting(card, left);
        if (const auto found = changed.find(group); found != changed.end()) {
            changes.records[found->second].values[name] = card.values[name];
        } else {
            changes.records.push_back({group, Kind::group, false, {{name, card.values[name]}}});
        }
    };
    for (const auto& [group, at] : changed) { // by what they will have
        const auto& values = changes.records[at].values;
        if (const auto lines = values.find(name); lines != values.end()) {
            join(group, Value(lines->second));
        }
    }
    for (const RowId row : store.rows(Kind::group)) {
        const auto group = store.find(row);
        if (!group || removed.contains(group->uid)) {
            continue;
        }
        const auto found = changed.find(group->uid);
        if (found == changed.end() || !changes.records[found->second].values.contains(name)) {
            join(group->uid, store.value(row, property::kUnknownLines));
        }
    }
}

} // namespace addressbook::sync
