#include "tests/sync/synced_book.h"

#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/sync/record_card.h"
#include "frameworks/AddressBook/vcard/edit_card.h"
#include "tests/vcard/support.h"

namespace addressbook::sync::test {

SyncedBook::SyncedBook(const std::filesystem::path& folder, MemoryServer& server)
    : server_(server), store_(std::make_unique<Store>(folder)) {
    if (store_->syncCollections().empty()) {
        ChangeSet changes;
        changes.sync.accounts.push_back(
            {0, "https://example.com", "ida", "Example", PasswordSource::none, {}});
        changes.sync.collections.push_back({0, 0, "https://example.com/book/", "Contacts", {}, 0, true});
        store_->save(changes);
    }
    collection_ = store_->syncCollections().front().id;
}

Summary SyncedBook::sync(const CycleOptions& options) {
    client_.requests.clear();
    return runCycle(*store_, collection_, client_, options);
}

void SyncedBook::save(const ChangeSet& changes) {
    ChangeSet timed = changes;
    timed.time = Date{++time_};
    store_->save(timed);
}

std::string SyncedBook::addPerson(const std::string& uuid, std::map<std::string, Value> values) {
    ChangeSet changes;
    changes.records.push_back({uuid + ":ABPerson", Kind::person, true, std::move(values)});
    save(changes);
    return uuid + ":ABPerson";
}

std::string SyncedBook::addGroup(const std::string& uuid, const std::string& name,
                                 const std::vector<std::string>& members) {
    const std::string uid = uuid + ":ABGroup";
    ChangeSet changes;
    changes.records.push_back({uid, Kind::group, true, {{"GroupName", name}}});
    for (const std::string& member : members) {
        changes.memberships.push_back({uid, member, true});
    }
    save(changes);
    return uid;
}

void SyncedBook::set(const std::string& uid, const std::string& property, Value value) {
    ChangeSet changes;
    const Kind kind = uid.ends_with(":ABGroup") ? Kind::group : Kind::person;
    changes.records.push_back({uid, kind, false, {{property, std::move(value)}}});
    save(changes);
}

void SyncedBook::remove(const std::string& uid) {
    ChangeSet changes;
    changes.removed.push_back(uid);
    save(changes);
}

void SyncedBook::join(const std::string& group, const std::string& member, bool add) {
    ChangeSet changes;
    changes.memberships.push_back({group, member, add});
    save(changes);
}

std::string SyncedBook::text(const std::string& uid, std::string_view property) const {
    const auto record = store_->find(uid);
    const Value value = record ? store_->value(record->row, property) : Value();
    return value.empty() ? std::string() : vcard::describe(value);
}

std::vector<std::string> SyncedBook::members(const std::string& group) const {
    std::vector<std::string> uids;
    if (const auto record = store_->find(group)) {
        for (const RowId row : store_->members(record->row)) {
            uids.push_back(store_->find(row)->uid);
        }
    }
    return uids;
}

std::vector<std::string> SyncedBook::groups(const std::string& name) const {
    std::vector<std::string> uids;
    for (const RowId row : store_->rows(Kind::group)) {
        if (store_->value(row, property::kGroupName) == Value(name)) {
            uids.push_back(store_->find(row)->uid);
        }
    }
    return uids;
}

std::vector<std::string> SyncedBook::uids() const {
    std::vector<std::string> uids;
    for (const Kind kind : {Kind::person, Kind::group}) {
        for (const RowId row : store_->rows(kind)) {
            uids.push_back(store_->find(row)->uid);
        }
    }
    return uids;
}

std::string SyncedBook::differences() const {
    std::string found;
    const auto say = [&](const std::string& what) { found += what + '\n'; };
    std::size_t cards = 0;
    store_->visitSyncLinks(collection_, [&](SyncLink&& listed) {
        const SyncLink link = *store_->syncLink(collection_, listed.href);
        if (!isOfRecord(link)) {
            return;
        }
        ++cards;
        const std::string there = server_.textOf(link.href);
        if (link.text != there) {
            say("the agreed text of " + link.href + " is\n" + link.text + "but on the server\n" + there);
        }
        auto card = cardOf(*store_, link.uid);
        if (!card) {
            say("no record of " + link.href);
            return;
        }
        card->categories = vcard::readOne(there).categories;
        if (const std::string here = vcard::editCard(there, *card); here != there) {
            say("the record of " + link.href + " is\n" + here + "but on the server\n" + there);
        }
    });
    if (cards != server_.cards.size()) {
        say(std::to_string(cards) + " links, but " + std::to_string(server_.cards.size()) + " cards");
    }
    return found;
}

} // namespace addressbook::sync::test
