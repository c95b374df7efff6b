#include "frameworks/AddressBook/sync/outgoing.h"

#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/sync/merge.h"
#include "frameworks/AddressBook/sync/record_card.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/edit_card.h"

#include <utility>

namespace addressbook::sync {

namespace {

using carddav::ErrorKind;
using carddav::Write;
using vcard::Card;

// How often a card is sent that others change all the time.
constexpr int kRounds = 5;

// Whether the server may take tomorrow what it did not take now, though nothing has changed. The rest is sent again
// when the record or the card has changed: a card that is too large, or a book that may only be read, would be refused
// each time.
bool mayPass(ErrorKind kind) {
    switch (kind) {
    case ErrorKind::locked:
    case ErrorKind::full:
    case ErrorKind::serverError:
    case ErrorKind::conflict:
    case ErrorKind::preconditionFailed:
        return true;
    default:
        return carddav::concernsServer(kind);
    }
}

// Returns what [read] says, with what no card says of [local].
Card withOwn(Card read, const Card& local) {
    for (const auto& [property, value] : local.values) {
        if (builtInType(local.kind, property) == 0) {
            read.values.try_emplace(property, value);
        }
    }
    read.uid = local.uid;
    return read;
}

} // namespace

void Outgoing::run() {
    for (int round = 0; round < kRounds && !session_.toSend.empty(); ++round) {
        send();
        lookAgain();
    }
    for (const std::string& uid : session_.toSend.take()) {
        Job job;
        job.uid = uid;
        refuse(job, "the card was changed on the server each time that it was to be sent");
        session_.again = true;
    }
}

void Outgoing::send() {
    const std::vector<std::string> uids = session_.toSend.take();
    std::size_t at = 0;
    const auto next = [&]() -> std::optional<Write> {
        while (ready_.empty() && at < uids.size()) {
            session_.tell(CycleProgress::Stage::sending, at, uids.size());
            prepare(uids[at++]);
        }
        if (ready_.empty()) {
            return std::nullopt;
        }
        Job job = std::move(ready_.back());
        ready_.pop_back();
        Write write{job.kind, job.href, job.etag, job.text};
        const std::string href = job.href;
        inFlight_.insert_or_assign(href, std::move(job));
        return write;
    };
    try {
        session_.server.write(
            next, [&](const Write& write, carddav::Written&& written) { done(write, std::move(written)); });
    } catch (const carddav::Error&) { // the server, not a card: what was made is noted first
        finish();
        throw;
    }
    finish();
}

void Outgoing::prepare(const std::string& uid) {
    const std::vector<SyncLink> links = session_.store.syncLinksOf(uid);
    const bool exists = session_.store.find(uid).has_value();
    bool belongs = false;
    for (const SyncLink& link : links) {
        belongs = belongs || !link.leaves;
        if (link.collection != session_.collection.id) {
            continue;
        }
        if (categoryOf(link.href)) {
            continue; // its people say so
        }
        if (link.leaves || !exists) {
            prepareRemoval(link);
        } else {
            prepareCard(uid, link);
        }
    }
    if (exists && !belongs && joining_.contains(uid)) {
        prepareCard(uid, std::nullopt);
    }
}

void Outgoing::prepareRemoval(const SyncLink& link) {
    Job job;
    job.kind = Write::Kind::remove;
    job.uid = link.uid;
    job.linked = job.href = link.href;
    if (link.text.empty()) { // never was there
        finished_.push_back(std::move(job));
        return;
    }
    const auto etag = etagOf(link);
    if (!etag) {
        look(link.href, link.uid);
        return;
    }
    job.etag = *etag;
    ++session_.summary.removedThere;
    if (!session_.options.dryRun) {
        ready_.push_back(std::move(job));
    }
}

void Outgoing::prepareCard(const std::string& uid, const std::optional<SyncLink>& link) {
    Job job;
    job.uid = uid;
    const std::string agreed = link ? link->text : std::string();
    const auto card = incoming_.localCard(uid, readCard(agreed));
    job.linked = link ? link->href : std::string();
    job.name = nameOf(*card);
    if (agreed.empty()) {
        job.kind = Write::Kind::create;
        job.href = hrefFor(uid);
        job.text = vcard::write(*card);
    } else {
        job.kind = Write::Kind::change;
        job.href = link->href;
        job.text = vcard::editCard(agreed, *card);
        if (job.text == agreed) {
            return;
        }
        const auto etag = etagOf(*link);
        if (!etag) {
            look(link->href, uid);
            return;
        }
        job.etag = *etag;
    }
    ++session_.summary.sent;
    if (session_.options.dryRun) {
        return;
    }
    if (vcard::editCard(job.text, *card) != job.text) {
        job.unread = card;
    }
    ready_.push_back(std::move(job));
}

// Where a new card goes: to another place when another card is there.
std::string Outgoing::hrefFor(const std::string& uid) const {
    const std::string uuid = vcard::uuidOf(uid);
    std::string href = session_.server.hrefFor(uuid);
    const auto isTaken = [&] {
        const auto link = session_.store.syncLink(session_.collection.id, href);
        return (link && link->uid != uid) || inFlight_.contains(href);
    };
    for (int number = 2; isTaken(); ++number) {
        href = session_.server.hrefFor(uuid + '-' + std::to_string(number));
    }
    return href;
}

std::optional<std::string> Outgoing::etagOf(const SyncLink& link) const {
    if (!link.etag.empty()) {
        return link.etag;
    }
    const auto found = session_.etags.find(link.href);
    return found == session_.etags.end() ? std::nullopt : std::optional(found->second);
}

void Outgoing::done(const Write& write, carddav::Written&& written) {
    auto found = inFlight_.extract(write.href);
    if (found.empty()) {
        return;
    }
    Job job = std::move(found.mapped());
    if (written.error) {
        fail(std::move(job), *written.error);
    } else {
        job.etag = std::move(written.etag);
        job.href = std::move(written.href);
        if (job.kind != Write::Kind::remove && job.etag.empty()) {
            look(job.href, job.uid); // once it is saved
        }
        bytes_ += job.text.size();
        finished_.push_back(std::move(job));
    }
    if (finished_.size() >= kBatchCards || bytes_ >= kBatchBytes) {
        finish();
    }
}

void Outgoing::fail(Job&& job, const carddav::Error& error) {
    --(job.kind == Write::Kind::remove ? session_.summary.removedThere : session_.summary.sent);
    const bool created = job.kind == Write::Kind::create;
    switch (error.kind()) {
    case ErrorKind::preconditionFailed:
    case ErrorKind::network:
        session_.etags.erase(job.href);
        look(job.href, job.uid);
        return;
    case ErrorKind::notFound:
        if (!created) {
            look(job.href, job.uid);
            return;
        }
        break;
    case ErrorKind::uidConflict:
        if (!error.href().empty() && error.href() != job.href) {
            look(error.href(), job.uid);
            return;
        }
        break;
    default:
        break;
    }
    refuse(job, error.what());
    if (mayPass(error.kind())) {
        session_.again = true;
    } else {
        job.refused = true;
        finished_.push_back(std::move(job));
    }
}

void Outgoing::refuse(const Job& job, const std::string& reason) {
    session_.summary.refused.push_back({job.uid, job.href, job.name, Side::remote, reason});
}

// Saves what the finished writes made of the server.
void Outgoing::finish() {
    if (finished_.empty()) {
        return;
    }
    const std::vector<Job> jobs = std::exchange(finished_, {});
    bytes_ = 0;
    session_.save([&](ChangeSet& changes) {
        for (const Job& job : jobs) {
            plan(job, changes);
        }
    });
    for (const Job& job : jobs) {
        session_.etags.erase(job.href);
    }
}

void Outgoing::plan(const Job& job, ChangeSet& changes) const {
    const std::int64_t collection = session_.collection.id;
    if (job.refused && job.linked.empty()) { // it belongs here all the same, and is sent when it has changed
        if (session_.store.find(job.uid)) {
            changes.sync.links.push_back(unsentLink(collection, job.uid));
        }
        return;
    }
    if (job.refused) { // what it was refused for is known: it is not fetched again
        auto link = session_.store.syncLink(collection, job.linked);
        const auto etag = session_.etags.find(job.linked);
        if (link && link->etag.empty() && etag != session_.etags.end() && !etag->second.empty()) {
            link->etag = etag->second;
            changes.sync.links.push_back(*std::move(link));
        }
        return;
    }
    if (!job.linked.empty() && (job.kind == Write::Kind::remove || job.linked != job.href)) {
        changes.sync.removedLinks.emplace_back(collection, job.linked);
    }
    if (job.kind == Write::Kind::remove) {
        return;
    }
    SyncLink link{collection, job.href, job.uid, job.etag, job.text, false};
    for (const SyncLink& other : session_.store.syncLinksOf(job.uid)) { // it may have been moved meanwhile
        link.leaves = link.leaves || (!other.leaves && other.collection != collection);
    }
    changes.sync.links.push_back(std::move(link));
    const auto read = job.unread ? readCard(job.text) : std::nullopt;
    const auto local = read ? incoming_.localCard(job.uid, read) : std::nullopt;
    if (local) { // the record becomes what the text says, or it would be sent for ever
        const Merged merged = merge(job.unread, local, withOwn(*read, *job.unread), Side::local);
        setRecord(session_.store, job.uid, *merged.card, changes);
        joinWaiting(session_.store, changes);
    }
}

// Fetches the cards whose state on the server is not known.
void Outgoing::lookAgain() {
    if (looks_.empty()) {
        return;
    }
    const auto looks = std::exchange(looks_, {});
    if (session_.options.dryRun) {
        session_.summary.sent += looks.size();
        return;
    }
    for (const auto& [href, uid] : looks) {
        incoming_.expect(href, uid);
    }
    std::vector<std::string> gone;
    auto at = looks.begin();
    session_.server.fetch(
        [&]() -> std::optional<std::string> {
            return at == looks.end() ? std::nullopt : std::optional((at++)->first);
        },
        [&](carddav::Fetched&& fetched) {
            const auto found = looks.find(fetched.href);
            const std::string uid = found == looks.end() ? std::string() : found->second;
            if (!fetched.error) {
                session_.toSend.add(uid);
                incoming_.take(std::move(fetched));
            } else if (fetched.error->kind() == ErrorKind::notFound) {
                gone.push_back(fetched.href);
                session_.toSend.add(uid);
            } else {
                Job job;
                job.uid = uid;
                job.href = fetched.href;
                refuse(job, fetched.error->what());
                session_.again = true;
            }
        });
    incoming_.flush();
    incoming_.remove(gone);
}

} // namespace addressbook::sync
