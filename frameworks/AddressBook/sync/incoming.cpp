#include "frameworks/AddressBook/sync/incoming.h"

#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/sync/merge.h"
#include "frameworks/AddressBook/sync/record_card.h"
#include "frameworks/AddressBook/vcard/edit_card.h"

#include <algorithm>
#include <utility>

namespace addressbook::sync {

namespace {

using vcard::Card;

std::string uidOf(const std::string& uuid, Kind kind) {
    return uuid + (kind == Kind::group ? ":ABGroup" : ":ABPerson");
}

// The card that a link's text is; nothing when the server has none yet.
std::optional<Card> agreedCard(const SyncLink& link) {
    return link.text.empty() ? std::nullopt : readCard(link.text);
}

bool holds(const std::vector<std::string>& uids, const std::string& uid) {
    return std::find(uids.begin(), uids.end(), uid) != uids.end();
}

} // namespace

void Incoming::take(carddav::Fetched&& fetched) {
    bytes_ += fetched.card.size();
    batch_.push_back({std::move(fetched.href), std::move(fetched.etag), std::move(fetched.card), {}});
    if (batch_.size() >= kBatchCards || bytes_ >= kBatchBytes) {
        flush();
    }
}

void Incoming::flush() {
    if (batch_.empty()) {
        return;
    }
    for (Arrived& arrived : batch_) {
        arrived.card = readCard(arrived.text);
    }
    // Groups first: a category of their name is theirs. Their members join when they are added.
    std::stable_partition(batch_.begin(), batch_.end(), [](const Arrived& arrived) {
        return arrived.card && arrived.card->kind == Kind::group;
    });
    // A card whose record one before it has written is planned by what that made of it.
    for (std::vector<Arrived> left = std::exchange(batch_, {}); !left.empty();) {
        Outcome outcome;
        std::vector<Arrived> later;
        session_.save([&](ChangeSet& changes) {
            outcome = {};
            later.clear();
            for (const Arrived& arrived : left) {
                const auto link = session_.store.syncLink(session_.collection.id, arrived.href);
                const std::string uid = link && isOfRecord(*link) ? link->uid
                                        : arrived.card            ? uidFor(arrived)
                                                                  : std::string();
                if (uid.empty() || outcome.uids.insert(uid).second) {
                    plan(arrived, changes, outcome);
                } else {
                    later.push_back(arrived);
                }
            }
            rejoin(outcome, changes);
            joinWaiting(session_.store, changes);
        });
        apply(std::move(outcome));
        left = session_.options.dryRun ? std::vector<Arrived>() : std::move(later);
    }
    bytes_ = 0;
}

void Incoming::apply(Outcome&& outcome) {
    Summary& sum = session_.summary;
    sum.fetched += outcome.summary.fetched;
    sum.removedHere += outcome.summary.removedHere;
    sum.merged += outcome.summary.merged;
    sum.conflicts += outcome.summary.conflicts;
    std::move(outcome.summary.refused.begin(), outcome.summary.refused.end(),
              std::back_inserter(sum.refused));
    for (const std::string& uid : outcome.toSend) {
        session_.toSend.add(uid);
    }
    for (auto& [href, etag] : outcome.etags) {
        session_.etags.insert_or_assign(href, std::move(etag));
    }
    session_.again = session_.again || outcome.again;
}

std::optional<Card> Incoming::localCard(const std::string& uid, const std::optional<Card>& agreed) const {
    std::optional<Card> card = cardOf(session_.store, uid);
    if (card && card->kind == Kind::person) {
        card->categories = categories_.of(uid, agreed ? agreed->categories : std::vector<std::string>());
    }
    return card;
}

// Returns the unique id of the record that a card without a link is, or will be.
std::string Incoming::uidFor(const Arrived& arrived) const {
    const Card& card = *arrived.card;
    const auto expected = expected_.find(arrived.href);
    if (expected != expected_.end() && expected->second.ends_with(uidOf({}, card.kind)) &&
        (card.uid.empty() || session_.store.syncLinksOf(card.uid).empty())) {
        return expected->second;
    }
    if (!card.uid.empty()) {
        return card.uid;
    }
    // The same one on all machines, so that they do not give it several.
    return uidOf(vcard::uuidOf(session_.collection.url + '\n' + arrived.href), card.kind);
}

void Incoming::plan(const Arrived& arrived, ChangeSet& changes, Outcome& outcome) const {
    const std::int64_t collection = session_.collection.id;
    auto link = session_.store.syncLink(collection, arrived.href);
    if (!arrived.card) {
        if (link && isOfRecord(*link)) { // the record stays as it is
            outcome.summary.refused.push_back(
                {link->uid, arrived.href, {}, Side::local, "the card cannot be read"});
            link->etag = arrived.etag;
            changes.sync.links.push_back(*std::move(link));
            return;
        }
        decline(arrived, unreadableId(arrived.href), "the card cannot be read", changes, outcome);
        return;
    }
    if (link && isOfRecord(*link)) {
        const std::optional<Card> base = agreedCard(*link);
        if (!link->uid.ends_with(uidOf({}, arrived.card->kind))) {
            outcome.summary.refused.push_back(
                {link->uid, arrived.href, nameOf(*arrived.card), Side::local,
                 "the card was of a person and is of a group now, or the reverse"});
            link->etag = arrived.etag;
            changes.sync.links.push_back(*std::move(link));
            return;
        }
        bringTogether(arrived, *std::move(link), base, changes, outcome);
        return;
    }
    SyncLink made{collection, arrived.href, uidFor(arrived), {}, {}, false};
    std::optional<Card> base;
    for (const SyncLink& other : session_.store.syncLinksOf(made.uid)) {
        if (other.leaves) {
            continue;
        }
        const bool moved = other.collection == collection && isOfRecord(other) &&
                           (other.text.empty() || gone_.contains(other.href));
        if (!moved) {
            const std::string where = other.collection == collection ? "another card of this address book"
                                                                     : "a card of another address book";
            const std::string id = elsewhereId(made.uid, collection);
            const std::vector<SyncLink> same = session_.store.syncLinksOf(id);
            const bool isFree = same.empty() || same.front().href == arrived.href;
            decline(arrived, isFree ? id : unreadableId(arrived.href), "its UID is that of " + where, changes,
                    outcome);
            return;
        }
        base = agreedCard(other);
        changes.sync.removedLinks.emplace_back(collection, other.href);
    }
    bringTogether(arrived, std::move(made), base, changes, outcome);
}

// Has records that come back join the groups again whose cards name them.
void Incoming::rejoin(const Outcome& outcome, ChangeSet& changes) const {
    if (outcome.restored.empty()) {
        return;
    }
    for (const RowId row : session_.store.rows(Kind::group)) {
        const auto group = session_.store.find(row);
        const auto link = group ? session_.linkOf(group->uid) : std::nullopt;
        const auto card = link ? agreedCard(*link) : std::nullopt;
        for (const std::string& member : card ? card->memberUids : std::vector<std::string>()) {
            for (const Kind kind : {Kind::person, Kind::group}) {
                const std::string uid = uidOf(vcard::uuidOf(member), kind);
                if (outcome.restored.contains(uid)) {
                    changes.memberships.push_back({group->uid, uid, true});
                }
            }
        }
    }
}

// Notes a card that becomes no record, so that it is not fetched again before it changes.
void Incoming::decline(const Arrived& arrived, const std::string& id, std::string reason, ChangeSet& changes,
                       Outcome& outcome) const {
    outcome.summary.refused.push_back({{},
                                       arrived.href,
                                       arrived.card ? nameOf(*arrived.card) : std::string(),
                                       Side::local,
                                       std::move(reason)});
    changes.sync.links.push_back({session_.collection.id, arrived.href, id, arrived.etag, {}, false});
}

void Incoming::bringTogether(const Arrived& arrived, SyncLink&& link, const std::optional<Card>& base,
                             ChangeSet& changes, Outcome& outcome) const {
    const Card& remote = *arrived.card;
    const std::optional<Card> local = localCard(link.uid, base);
    const bool lost = !local && session_.recovers();
    // What is sent after the server's change is the later save by the server's order.
    Merged merged = merge(lost ? std::nullopt : base, local, remote, Side::local);
    link.etag = arrived.etag;
    if (!merged.card) { // deleted here, and not changed there
        link.text = arrived.text;
        outcome.etags[arrived.href] = arrived.etag;
        outcome.toSend.push_back(link.uid);
        changes.sync.links.push_back(std::move(link));
        return;
    }
    Card& card = *merged.card;
    card.uid = link.uid;
    if (!local && !link.text.empty()) {
        outcome.restored.insert(link.uid);
    }
    link.text = arrived.text;
    const std::size_t before = changes.records.size() + changes.memberships.size();
    setRecord(session_.store, link.uid, card, changes);
    if (card.kind == Kind::person) {
        categories_.set(link.uid, local ? local->categories : std::vector<std::string>(), card.categories,
                        changes);
    } else if (!local) {
        categories_.replace(link.uid, card, changes);
    }
    if (before < changes.records.size() + changes.memberships.size()) {
        ++outcome.summary.fetched;
    }
    if (vcard::editCard(arrived.text, card) != arrived.text) {
        outcome.summary.merged += base && local && !vcard::sayTheSame(*base, remote) ? 1 : 0;
        outcome.toSend.push_back(link.uid);
        outcome.etags[arrived.href] = arrived.etag;
        link.etag.clear();
    } else if (arrived.etag.empty() || link.leaves) {
        outcome.etags[arrived.href] = arrived.etag;
    }
    if (link.leaves) {
        outcome.toSend.push_back(link.uid);
    }
    for (Conflict& conflict : merged.conflicts) {
        changes.sync.conflicts.push_back({0, link.uid, std::move(conflict.property),
                                          std::move(conflict.label), std::move(conflict.value), changes.time,
                                          conflict.side == Side::remote});
        ++outcome.summary.conflicts;
    }
    changes.sync.links.push_back(std::move(link));
}

void Incoming::remove(const std::vector<std::string>& hrefs) {
    for (std::size_t from = 0; from < hrefs.size(); from += kBatchCards) {
        Outcome outcome;
        session_.save([&](ChangeSet& changes) {
            outcome = {};
            for (std::size_t at = from; at < std::min(hrefs.size(), from + kBatchCards); ++at) {
                if (const auto link = session_.store.syncLink(session_.collection.id, hrefs[at])) {
                    planRemoval(*link, changes, outcome);
                }
            }
            // Groups whose cards name them go on doing so, and have them again if they come back.
            std::vector<std::string> groups;
            for (const std::string& uid : changes.removed) {
                const auto record = session_.store.find(uid);
                for (const RowId row : session_.store.parents(record->row)) {
                    const auto group = session_.store.find(row);
                    if (group && !holds(groups, group->uid) && !holds(changes.removed, group->uid)) {
                        groups.push_back(group->uid);
                    }
                }
            }
            for (const std::string& group : groups) {
                const auto link = session_.linkOf(group);
                if (const auto card = cardOf(session_.store, group); card && link && isOfRecord(*link)) {
                    setRecord(session_.store, group, *card, changes);
                }
            }
        });
        apply(std::move(outcome));
    }
}

void Incoming::planRemoval(const SyncLink& link, ChangeSet& changes, Outcome& outcome) const {
    if (isOfRecord(link) && link.text.empty()) {
        return; // it is to be sent
    }
    if (isOfRecord(link) && !link.leaves) {
        for (const SyncCollection& each : session_.store.syncCollections()) {
            for (const SyncLink& other : session_.store.syncLinksOf(elsewhereId(link.uid, each.id))) {
                // Its other card stands for it from now on, which is fetched when all of that collection is listed.
                changes.sync.removedLinks.emplace_back(other.collection, other.href);
                changes.sync.removedLinks.emplace_back(link.collection, link.href);
                SyncCollection listed = each;
                listed.state.clear();
                changes.sync.collections.push_back(std::move(listed));
                return;
            }
        }
        const std::optional<Card> base = agreedCard(link);
        const std::optional<Card> local = localCard(link.uid, base);
        if (local && vcard::editCard(link.text, *local) != link.text) { // changed here: it is made again
            SyncLink unsent = unsentLink(link.collection, link.uid);
            changes.sync.removedLinks.emplace_back(link.collection, link.href);
            changes.sync.links.push_back(std::move(unsent));
            outcome.toSend.push_back(link.uid);
            return;
        }
        if (local) {
            changes.removed.push_back(link.uid);
            ++outcome.summary.removedHere;
        }
    }
    changes.sync.removedLinks.emplace_back(link.collection, link.href);
}

} // namespace addressbook::sync
