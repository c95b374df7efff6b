#include "frameworks/AddressBook/sync/categories.h"

#include "frameworks/AddressBook/sync/links.h"

#include <algorithm>

namespace addressbook::sync {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void addOnce(std::vector<std::string>& names, const std::string& name) {
    if (!name.empty() && !contains(names, name)) {
        names.push_back(name);
    }
}

} // namespace

std::vector<std::string> Categories::of(const std::string& person,
                                        const std::vector<std::string>& agreed) const {
    const std::vector<std::string> groups = groupsOf(person);
    std::vector<std::string> names;
    for (const std::string& name : agreed) {
        const auto group = find(name);
        if (!group) {
            addOnce(names, name);
        } else if (contains(groups, group->uid)) {
            addOnce(names, group->isCard ? name : nameOf(group->uid));
        }
    }
    for (const std::string& group : groups) {
        if (const auto link = session_.linkOf(group); link && categoryOf(link->href)) {
            addOnce(names, nameOf(group));
        }
    }
    return names;
}

void Categories::set(const std::string& person, const std::vector<std::string>& now,
                     const std::vector<std::string>& wanted, ChangeSet& changes) const {
    for (const std::string& name : wanted) {
        if (!contains(now, name) && !name.empty()) {
            const auto group = find(name, &changes);
            changes.memberships.push_back({group ? group->uid : make(name, changes), person, true});
        }
    }
    for (const std::string& name : now) {
        if (contains(wanted, name)) {
            continue;
        }
        if (const auto group = find(name, &changes)) {
            changes.memberships.push_back({group->uid, person, false});
        }
    }
}

void Categories::replace(const std::string& group, const vcard::Card& card, ChangeSet& changes) const {
    const std::string name = sync::nameOf(card);
    const auto link = session_.store.syncLink(session_.collection.id, categoryHref(name));
    const auto record = link ? session_.store.find(link->uid) : std::nullopt;
    if (!record || record->uid == group) {
        return;
    }
    for (const RowId row : session_.store.members(record->row)) {
        if (const auto member = session_.store.find(row)) {
            changes.memberships.push_back({group, member->uid, true});
        }
    }
    changes.removed.push_back(record->uid);
    changes.sync.removedLinks.emplace_back(link->collection, link->href);
    session_.toSend.add(group);
}

void Categories::queueConcerned() {
    const std::vector<std::string> groups = changed_.take();
    if (groups.empty()) {
        return;
    }
    concerned_.insert(concerned_.end(), groups.begin(), groups.end());
    const Store& store = session_.store;
    for (const std::string& group : groups) {
        if (const auto record = store.find(group)) {
            for (const RowId row : store.members(record->row)) {
                if (const auto member = store.find(row)) {
                    session_.toSend.add(member->uid);
                }
            }
        }
    }
    store.visitSyncLinks(session_.collection.id, [&](SyncLink&& link) {
        if (!isOfRecord(link) || link.leaves) {
            return;
        }
        const auto whole = store.syncLink(link.collection, link.href);
        if (whole && whole->text.find("CATEGORIES") != std::string::npos) {
            session_.toSend.add(link.uid);
        }
    });
}

void Categories::rename() {
    if (concerned_.empty() || session_.again) {
        return;
    }
    session_.save([&](ChangeSet& changes) {
        for (const std::string& group : concerned_) {
            const auto link = session_.linkOf(group);
            const bool exists = session_.store.find(group).has_value();
            const std::string href = categoryHref(nameOf(group));
            if (!link || (exists && session_.store.syncLink(link->collection, href))) {
                continue; // it is called so, or another is
            }
            changes.sync.removedLinks.emplace_back(link->collection, link->href);
            if (exists) {
                SyncLink renamed = *link;
                renamed.href = href;
                changes.sync.links.push_back(std::move(renamed));
            }
        }
    });
    concerned_.clear();
}

std::optional<Categories::Group> Categories::find(const std::string& name, const ChangeSet* changes) const {
    const std::string href = categoryHref(name);
    if (changes) {
        for (const SyncLink& link : changes->sync.links) {
            if (link.href == href) {
                return Group{link.uid, false};
            }
        }
        for (const RecordChange& change : changes->records) {
            const auto given = change.values.find(std::string(property::kGroupName));
            if (change.kind == Kind::group && change.insert && given != change.values.end() &&
                given->second == Value(name)) {
                return Group{change.uid, true};
            }
        }
    }
    const Store& store = session_.store;
    if (const auto link = store.syncLink(session_.collection.id, href);
        link && (!changes || store.find(link->uid))) {
        return Group{link->uid, false};
    }
    const Query named{
        Condition{Kind::group, std::string(property::kGroupName), {}, {}, name, Comparison::equal}};
    for (const RowId row : store.search(named, {})) {
        const auto group = store.find(row);
        const auto link = group ? session_.linkOf(group->uid) : std::nullopt;
        if (link && (categoryOf(link->href) || !link->text.empty())) {
            return Group{group->uid, !categoryOf(link->href)};
        }
    }
    return std::nullopt;
}

// Adds a group for a category. Its unique id depends on the collection and the name, so that the group of an account
// that was removed and added again is found.
std::string Categories::make(const std::string& name, ChangeSet& changes) const {
    std::string uid = vcard::uuidOf("category\n" + session_.collection.url + '\n' + name) + ":ABGroup";
    if (!session_.store.syncLinksOf(uid).empty()) {
        uid = newUid(Kind::group);
    }
    if (!session_.store.find(uid)) {
        changes.records.push_back({uid, Kind::group, true, {{std::string(property::kGroupName), name}}});
    }
    changes.sync.links.push_back({session_.collection.id, categoryHref(name), uid, {}, {}, false});
    return uid;
}

std::vector<std::string> Categories::groupsOf(const std::string& person) const {
    std::vector<std::string> groups;
    if (const auto record = session_.store.find(person)) {
        for (const RowId row : session_.store.parents(record->row)) {
            if (const auto group = session_.store.find(row)) {
                groups.push_back(group->uid);
            }
        }
    }
    return groups;
}

std::string Categories::nameOf(const std::string& group) const {
    const auto record = session_.store.find(group);
    const Value name = record ? session_.store.value(record->row, property::kGroupName) : Value();
    const auto* text = name.as<std::string>();
    return text ? *text : std::string();
}

} // namespace addressbook::sync
