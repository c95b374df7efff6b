#include "tools/addressbook/import.h"

#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <utility>

namespace addressbook::tool {

namespace {

// The most cards and bytes of one save. Larger saves would take too much memory; smaller ones write the search
// indexes more often.
constexpr std::size_t kCardsPerSave = 25'000;
constexpr std::size_t kBytesPerSave = std::size_t{24} * 1024 * 1024;

constexpr std::string_view kPersonSuffix = ":ABPerson", kGroupSuffix = ":ABGroup";

std::string uidOf(std::string uuid, Kind kind) {
    return uuid.append(kind == Kind::group ? kGroupSuffix : kPersonSuffix);
}

// Gives entries that exist already their old identifiers, so that importing a card twice changes nothing.
void keepIdentifiers(MultiValue& list, const Value& current) {
    const auto* old = current.as<MultiValue>();
    if (!old) {
        return;
    }
    std::set<std::string> used;
    const std::string primary = list.primary;
    const auto adopt = [&](Entry& entry, bool sameLabel) {
        for (const Entry& each : old->entries) {
            if (each.value == entry.value && (each.label == entry.label || !sameLabel) &&
                used.insert(each.identifier).second) {
                if (entry.identifier == primary) {
                    list.primary = each.identifier;
                }
                entry.identifier = each.identifier;
                return true;
            }
        }
        return false;
    };
    std::vector<Entry*> left;
    for (Entry& entry : list.entries) {
        if (!adopt(entry, true)) {
            left.push_back(&entry);
        }
    }
    for (Entry* entry : left) {
        adopt(*entry, false);
    }
}

std::map<std::string, Value> valuesIn(const std::string& card) {
    std::map<std::string, Value> values;
    visitProperties(card, [&](std::string_view name, std::string_view value) {
        values.emplace(name, decodeValue(value));
    });
    return values;
}

} // namespace

Importer::Importer(Store* store, bool dryRun, Report report, Progress progress)
    : store_(store), known_(store), dryRun_(dryRun || !store), report_(std::move(report)),
      progress_(std::move(progress)) {}

const ImportSummary& Importer::read(std::istream& input, const std::string& file, vcard::Charset charset) {
    ++files_;
    tellsUnknownLines_ = true;
    vcard::Reader reader(input, std::move(charset));
    bool guessed = false;
    while (auto next = reader.next()) {
        if (const auto* problem = std::get_if<vcard::Problem>(&*next)) {
            refuse(*problem, file, reader.bytesRead());
        } else {
            auto& card = std::get<vcard::Card>(*next);
            if (!guessed && !reader.guessed().empty()) {
                guessed = true;
                report_(file,
                        {card.number, card.line,
                         "names no character set and is no UTF-8; read as " + reader.guessed() +
                             ", which is a guess (--charset NAME overrides it), as are all such cards of "
                             "the file"});
            }
            add(card, file, reader.bytesRead());
        }
    }
    return summary_;
}

void Importer::add(vcard::Card& card, const std::string& file, std::size_t bytes) {
    ++summary_.read;
    take(card, file);
    advance(bytes);
}

void Importer::refuse(const vcard::Problem& problem, const std::string& file, std::size_t bytes) {
    ++summary_.read;
    ++summary_.refused;
    report_(file, problem);
    advance(bytes);
}

// Tells how far it is, and saves when there is much to save.
void Importer::advance(std::size_t bytes) {
    progress_(bytes, summary_);
    if (people_.size() >= kCardsPerSave || pendingBytes_ >= kBytesPerSave) {
        flush();
    }
}

void Importer::take(vcard::Card& card, const std::string& file) {
    for (const vcard::Problem& skipped : card.skipped) {
        ++summary_.skippedLines;
        report_(file, {skipped.number, skipped.line, "left out: " + skipped.reason});
    }
    if (!card.unended.empty()) {
        report_(file, {card.number, card.line, card.unended + "; what it has was taken"});
    }
    std::string uid = card.uid.empty() ? idFor(card) : std::exchange(card.uid, {});
    const std::uint64_t digest = std::hash<std::string>()(card.digest);

    // Several cards of one file with one id but different contents are different people.
    for (int copy = 2;; ++copy) {
        const SeenRecord* found = seen_.find(uid);
        if (found && found->digest == digest) {
            ++summary_.unchanged;
            return;
        }
        if (!found || found->file != files_) {
            break;
        }
        if (copy == 2) {
            report_(file,
                    {card.number, card.line, "its id is that of a card before; added as another record"});
        }
        uid = uidOf(vcard::uuidOf(uid.append("#").append(std::to_string(copy))), card.kind);
    }
    if (!card.otherUuid.empty()) {
        aliases_.emplace(card.otherUuid, uid);
    }
    for (const std::string& name : card.categories) {
        named_[name].push_back(uid);
    }
    SeenRecord& seen = seen_[uid];
    const bool again = seen.file != 0;
    seen.file = files_;
    seen.digest = digest;
    if (card.kind == Kind::group) {
        addGroup(uid, card, seen);
    } else {
        addPerson(uid, card, seen, again);
    }
}

// Returns the unique id of a card that names none: it is made of what the card says. A record that an earlier
// version made of such a card is known by its values.
std::string Importer::idFor(const vcard::Card& card) {
    std::string uid = uidOf(card.digest, card.kind);
    if (exists(uid)) {
        return uid;
    }
    const std::string known = known_.withContents(
        card.kind, card.values, [&](const std::string& each) { return !seen_.contains(each); });
    return known.empty() ? uid : known;
}

// Keeps a group until finish(), as cards of its members may follow.
void Importer::addGroup(const std::string& uid, vcard::Card& card, SeenRecord& seen) {
    ++summary_.groups;
    if (!card.memberUids.empty()) {
        std::erase_if(members_, [&](const GroupMembers& each) { return each.uid == uid; });
        members_.push_back({uid, std::move(card.memberUids)});
    }
    if (seen.pending == SeenRecord::kNotPending) {
        seen.pending = static_cast<std::uint32_t>(groups_.size());
        groups_.push_back({uid, Kind::group, true, std::move(card.values)});
        return;
    }
    for (auto& [property, value] : card.values) { // an earlier file had this group, too
        groups_[seen.pending].values[property] = std::move(value);
    }
    ++summary_.updated;
}

void Importer::addPerson(const std::string& uid, vcard::Card& card, SeenRecord& seen, bool again) {
    const auto image = card.values.find(std::string(property::kImage));
    Value picture = image == card.values.end() ? Value() : std::exchange(image->second, Value());
    if (const auto* bytes = picture.as<Bytes>()) {
        pendingBytes_ += bytes->size();
    }
    if (seen.pending != SeenRecord::kNotPending) { // an earlier file had this person, too
        PendingPerson& person = people_[seen.pending];
        card.values.merge(valuesIn(person.card));
        person.card = encodeValues(card.values);
        if (!picture.empty()) {
            person.picture = std::move(picture);
        }
        ++summary_.updated;
        return;
    }
    seen.pending = static_cast<std::uint32_t>(people_.size());
    people_.push_back({uid, encodeValues(card.values), std::move(picture), again, tellsUnknownLines_});
    pendingBytes_ += people_.back().card.size();
}

// Compares the people that are pending with the address book, and turns them into what is to be saved.
void Importer::comparePeople() {
    std::optional<Store::ReadTransaction> reading;
    if (store_) {
        reading.emplace(*store_);
    }
    for (PendingPerson& person : people_) {
        seen_[person.uid].pending = SeenRecord::kNotPending;
        RecordChange change{.uid = std::move(person.uid), .kind = Kind::person, .insert = true, .values = {}};
        const bool isNew = !store_ || !store_->find(change.uid);
        if (isNew) {
            change.card = std::move(person.card);
        } else {
            change.values = valuesIn(person.card);
        }
        if (!person.picture.empty()) {
            change.values.emplace(property::kImage, std::move(person.picture));
        }
        if (!isNew) {
            takeDifference(change, person.tellsUnknownLines);
        }
        if (!change.insert && change.values.empty()) {
            ++summary_.unchanged;
            continue;
        }
        ++(isNew && !person.again ? summary_.added : summary_.updated);
        changes_.records.push_back(std::move(change));
    }
    people_.clear();
    pendingBytes_ = 0;
}

// Reduces [change] to what differs from the record in the address book; returns false when that has no such
// record. An import sets the values of the card, and does not remove others.
bool Importer::takeDifference(RecordChange& change, bool tellsUnknownLines) const {
    const auto record = store_ ? store_->find(change.uid) : std::nullopt;
    if (!record) {
        return false;
    }
    const std::string unknown(property::kUnknownLines);
    const std::map<std::string, Value> current = store_->values(record->row);
    std::map<std::string, Value> values;
    std::swap(values, change.values);
    change.insert = false;
    if (tellsUnknownLines && current.contains(unknown)) {
        values.try_emplace(unknown); // removes unknown lines that the card no longer has
    }
    for (auto& [property, value] : values) {
        const auto found = current.find(property);
        const Value old = property == property::kImage ? store_->value(record->row, property)
                          : found == current.end()     ? Value()
                                                       : found->second;
        if (auto* list = value.as<MultiValue>()) {
            keepIdentifiers(*list, old);
        }
        if (!(value == old)) {
            change.values.emplace(property, std::move(value));
        }
    }
    return true;
}

bool Importer::exists(const std::string& uid) const {
    return seen_.contains(uid) || (store_ && store_->find(uid).has_value());
}

// Returns the unique id of the record that a group's card names as a member; empty when there is none.
std::string Importer::resolve(const std::string& member) {
    const std::string uuid = vcard::uuidOf(member);
    if (const auto alias = aliases_.find(uuid); alias != aliases_.end()) {
        return alias->second;
    }
    for (const Kind kind : {Kind::person, Kind::group}) {
        if (std::string uid = uidOf(uuid, kind); exists(uid)) {
            return uid;
        }
    }
    return known_.withOtherUid(uuid);
}

// Whether [subgroup] contains [group] already, through any number of groups.
bool Importer::wouldCycle(const std::string& group, const std::string& subgroup) const {
    std::set<std::string> visited;
    std::vector<std::string> open{subgroup};
    while (!open.empty()) {
        const std::string at = open.back();
        open.pop_back();
        if (at == group) {
            return true;
        }
        if (!visited.insert(at).second) {
            continue;
        }
        if (const auto joined = subgroups_.find(at); joined != subgroups_.end()) {
            open.insert(open.end(), joined->second.begin(), joined->second.end());
        }
        if (const auto record = store_ ? store_->find(at) : std::nullopt) {
            for (const RowId row : store_->subgroups(record->row)) {
                if (const auto child = store_->find(row)) {
                    open.push_back(child->uid);
                }
            }
        }
    }
    return false;
}

// Makes the members that the card lists the group's members.
void Importer::joinGroup(const GroupMembers& group) {
    std::set<std::string> old;
    if (const auto record = store_ ? store_->find(group.uid) : std::nullopt) {
        for (const auto& rows : {store_->members(record->row), store_->subgroups(record->row)}) {
            for (const RowId row : rows) {
                if (const auto member = store_->find(row)) {
                    old.insert(member->uid);
                }
            }
        }
    }
    Array unresolved;
    std::set<std::string> listed;
    for (const std::string& name : group.members) {
        const std::string member = resolve(name);
        const bool subgroup = member.ends_with(kGroupSuffix);
        if (member.empty()) {
            unresolved.emplace_back(vcard::memberLine(name));
            continue;
        }
        if (!listed.insert(member).second || old.contains(member)) {
            continue;
        }
        if (subgroup && wouldCycle(group.uid, member)) {
            ++summary_.circular;
            continue;
        }
        if (subgroup) {
            subgroups_[group.uid].push_back(member);
        }
        changes_.memberships.push_back({group.uid, member, true});
    }
    for (const std::string& member : old) {
        if (!listed.contains(member)) {
            changes_.memberships.push_back({group.uid, member, false});
        }
    }
    if (unresolved.empty()) {
        return;
    }
    // Unresolved members stay in the group's unknown lines, for an export and for a later import.
    summary_.unknownMembers += unresolved.size();
    Value& lines = groups_[seen_[group.uid].pending].values[std::string(property::kUnknownLines)];
    if (lines.empty()) {
        lines = Array();
    }
    auto& array = *lines.as<Array>();
    for (Value& line : unresolved) {
        if (std::find(array.begin(), array.end(), line) == array.end()) {
            array.push_back(std::move(line));
        }
    }
}

// Members that groups in the address book wait for, and that have come with this import.
void Importer::joinLateMembers() {
    if (!store_) {
        return;
    }
    for (const RowId row : store_->rows(Kind::group)) {
        const auto record = store_->find(row);
        const std::string unknown(property::kUnknownLines);
        const Value stored = record ? store_->value(row, unknown) : Value();
        const auto* lines = stored.as<Array>();
        const SeenRecord* seen = lines ? seen_.find(record->uid) : nullptr;
        if (!lines || (seen && seen->pending != SeenRecord::kNotPending)) {
            continue; // a group whose card is here lists its members anew
        }
        Array left;
        for (const Value& line : *lines) {
            const auto* text = line.as<std::string>();
            const auto name = text ? vcard::memberIn(*text) : std::nullopt;
            const std::string member = name ? resolve(*name) : std::string();
            if (member.empty() || (member.ends_with(kGroupSuffix) && wouldCycle(record->uid, member))) {
                left.push_back(line);
                continue;
            }
            changes_.memberships.push_back({record->uid, member, true});
            ++summary_.lateMembers;
        }
        if (left.size() < lines->size()) {
            changes_.records.push_back({.uid = record->uid,
                                        .kind = Kind::group,
                                        .insert = false,
                                        .values = {{unknown, left.empty() ? Value() : Value(left)}}});
        }
    }
}

// The groups of the address book and of this import by their names.
std::map<std::string, std::vector<std::string>> Importer::groupsByName() const {
    std::map<std::string, std::vector<std::string>> byName;
    const auto add = [&](const Value& name, const std::string& uid) {
        if (const auto* text = name.as<std::string>()) {
            byName[normalize(*text)].push_back(uid);
        }
    };
    if (store_) {
        for (const RowId row : store_->rows(Kind::group)) {
            if (const auto record = store_->find(row)) {
                add(store_->value(row, property::kGroupName), record->uid);
            }
        }
    }
    for (const RecordChange& group : groups_) {
        if (const auto name = group.values.find(std::string(property::kGroupName));
            name != group.values.end()) {
            add(name->second, group.uid);
        }
    }
    return byName;
}

// Groups that cards of people name. Of several groups of one name a person joins the first, but none when
// another one has the person already: a card names its groups beside the groups' own cards.
void Importer::joinNamedGroups() {
    if (named_.empty()) {
        return;
    }
    auto byName = groupsByName();
    std::map<std::string, std::vector<std::string>> joined;
    for (const MembershipChange& each : changes_.memberships) {
        if (each.add) {
            joined[each.group].push_back(each.member);
        }
    }
    for (const auto& [name, people] : named_) {
        std::vector<std::string>& groups = byName[normalize(name)];
        if (groups.empty()) {
            groups.push_back(uidOf(vcard::uuidOf("group:" + name), Kind::group));
        }
        const std::string uid = groups.front();
        std::set<std::string> old;
        for (const std::string& group : groups) {
            if (const auto record = store_ ? store_->find(group) : std::nullopt) {
                for (const RowId row : store_->members(record->row)) {
                    if (const auto member = store_->find(row)) {
                        old.insert(member->uid);
                    }
                }
            }
            old.insert(joined[group].begin(), joined[group].end());
        }
        if (!seen_.contains(uid) && !(store_ && store_->find(uid))) {
            RecordChange group{.uid = uid, .kind = Kind::group, .insert = true, .values = {}};
            group.values[std::string(property::kGroupName)] = name;
            groups_.push_back(std::move(group));
            ++summary_.namedGroups;
        }
        for (const std::string& person : people) {
            if (old.insert(person).second) {
                changes_.memberships.push_back({uid, person, true});
                joined[uid].push_back(person);
            }
        }
    }
}

ImportSummary Importer::finish() {
    comparePeople(); // so that they come before the groups
    for (const GroupMembers& group : members_) {
        joinGroup(group);
    }
    joinLateMembers();
    joinNamedGroups();
    for (RecordChange& group : groups_) {
        const bool known = takeDifference(group, true);
        const bool same = known && group.values.empty();
        if (seen_.contains(group.uid)) { // groups that are only named have no card
            ++(same ? summary_.unchanged : known ? summary_.updated : summary_.added);
        }
        if (!same) {
            changes_.records.push_back(std::move(group));
        }
    }
    flush();
    return summary_;
}

void Importer::flush() {
    comparePeople();
    if (!dryRun_ && !changes_.empty()) {
        changes_.time = currentTime();
        const SaveResult result = store_->save(changes_);
        summary_.saved += changes_.records.size();
        summary_.circular += result.circular.size();
        summary_.missing += result.missing.size();
    }
    changes_ = ChangeSet();
}

} // namespace addressbook::tool
