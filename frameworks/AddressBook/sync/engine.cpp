#include "frameworks/AddressBook/sync/engine.h"

#include "frameworks/AddressBook/sync/categories.h"
#include "frameworks/AddressBook/sync/cycle_lock.h"
#include "frameworks/AddressBook/sync/incoming.h"
#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/sync/listing.h"
#include "frameworks/AddressBook/sync/local_changes.h"
#include "frameworks/AddressBook/sync/outgoing.h"
#include "frameworks/AddressBook/sync/session.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace addressbook::sync {

namespace {

// So few cards may vanish at once whatever their share.
constexpr std::size_t kFewCards = 5;
// How often a cycle sends what is saved here while it runs.
constexpr int kPasses = 3;

std::string massSentence(Side side, std::size_t vanishing, std::size_t of) {
    const std::string some = std::to_string(vanishing) + " of " + std::to_string(of) + " cards ";
    return side == Side::remote ? some + "are not on the server any more, and would be deleted here as well"
                                : some + "were deleted here, and would be deleted on the server as well";
}

SyncCollection findCollection(const Store& store, std::int64_t id) {
    for (SyncCollection& each : store.syncCollections()) {
        if (each.id == id) {
            return std::move(each);
        }
    }
    throw StoreError(StoreError::Reason::refused, store.file(), "has no such address book of an account",
                     "see which there are");
}

class Cycle {
  public:
    Cycle(Store& store, std::int64_t collection, carddav::Collection& server, const CycleOptions& options)
        : session_(store, server, options, findCollection(store, collection)) {}

    Summary run() {
        LocalChanges changes = log_.next();
        processed_ = log_.position();
        const Listing listing = readListing(session_);
        if (!listing.changed.empty() || !listing.gone.empty() || !changes.empty()) {
            const RowId newest = changes.unknown ? newestLinked() : 0;
            if (!session_.options.force) {
                refuseMassDeletion(listing, changes);
            }
            incoming_.noteGone(listing.gone);
            fetch(listing.changed);
            incoming_.remove(listing.gone);
            sendAll(std::move(changes), newest);
        }
        finish(listing.state);
        return std::move(session_.summary);
    }

  private:
    // Throws MassDeletion when there is one.
    void refuseMassDeletion(const Listing& listing, const LocalChanges& changes) const {
        const Store& store = session_.store;
        const auto refuse = [&](Side side, std::size_t vanishing) {
            if (vanishing <= kFewCards) {
                return;
            }
            if (const std::size_t all = countCards(session_); vanishing * 2 > all) {
                throw MassDeletion(side, vanishing, all);
            }
        };
        const auto isCard = [](const SyncLink& link) {
            return isOfRecord(link) && !link.leaves && !link.text.empty();
        };
        if (listing.gone.size() > kFewCards) {
            refuse(Side::remote, static_cast<std::size_t>(std::count_if(
                                     listing.gone.begin(), listing.gone.end(), [&](const std::string& href) {
                                         const auto link = store.syncLink(session_.collection.id, href);
                                         return link && isCard(*link) && store.find(link->uid);
                                     })));
        }
        const std::vector<std::string> deleted = changes.unknown ? deletedRecords(session_) : changes.deleted;
        if (deleted.size() > kFewCards) {
            refuse(Side::local, static_cast<std::size_t>(std::count_if(
                                    deleted.begin(), deleted.end(), [&](const std::string& uid) {
                                        const auto link = session_.linkOf(uid);
                                        return link && isCard(*link) && !store.find(uid);
                                    })));
        }
    }

    void fetch(const std::vector<std::string>& hrefs) {
        std::size_t at = 0, done = 0;
        session_.server.fetch(
            [&]() -> std::optional<std::string> {
                return at == hrefs.size() ? std::nullopt : std::optional(hrefs[at++]);
            },
            [&](carddav::Fetched&& fetched) {
                session_.tell(CycleProgress::Stage::fetching, ++done, hrefs.size());
                if (!fetched.error) {
                    incoming_.take(std::move(fetched));
                } else if (fetched.error->kind() !=
                           carddav::ErrorKind::notFound) { // the next listing tells that
                    session_.summary.refused.push_back(
                        {{}, fetched.href, {}, Side::remote, fetched.error->what()});
                    session_.again = session_.again || fetched.error->kind() != carddav::ErrorKind::tooLarge;
                }
            });
        incoming_.flush();
    }

    // The row of the newest record that has a card in the collection. What is newer and belongs nowhere was added since
    // the last cycle.
    RowId newestLinked() const {
        RowId newest = 0;
        session_.store.visitSyncLinks(session_.collection.id, [&](SyncLink&& link) {
            if (const auto record = session_.store.find(link.uid)) {
                newest = std::max(newest, record->row);
            }
        });
        return newest;
    }

    // Sends what was changed here, and what is meanwhile.
    void sendAll(LocalChanges&& changes, RowId newest) {
        for (int pass = 0; pass < kPasses; ++pass) {
            const std::int64_t position = log_.position();
            send(changes, newest);
            processed_ = position;
            changes = log_.next();
            if (changes.empty()) {
                processed_ = log_.position();
                return;
            }
        }
    }

    // Sends what was changed here. [newest]: see newestLinked().
    void send(const LocalChanges& changes, RowId newest) {
        for (const std::vector<std::string>* list : {&changes.inserted, &changes.updated, &changes.deleted}) {
            for (const std::string& uid : *list) {
                consider(uid, list == &changes.inserted);
            }
        }
        if (changes.unknown) {
            for (const Kind kind : {Kind::person, Kind::group}) {
                for (const RowId row : session_.store.rows(kind)) {
                    if (const auto record = session_.store.find(row)) {
                        consider(record->uid, row > newest);
                    }
                }
            }
            for (const std::string& uid : deletedRecords(session_)) {
                consider(uid, false);
            }
        }
        if (!changes.deleted.empty()) {
            queueGroups();
        }
        categories_.queueConcerned();
        outgoing_.run();
        categories_.rename();
    }

    // Queues a record that was changed here if the collection has it, or is to have it.
    void consider(const std::string& uid, bool isNew) {
        const std::vector<SyncLink> links = session_.store.syncLinksOf(uid);
        const bool joins = links.empty() && isNew && session_.collection.isDefault;
        if (joins) {
            outgoing_.join(uid);
        }
        for (const SyncLink& link : links) {
            if (link.collection != session_.collection.id) {
                continue;
            }
            if (categoryOf(link.href)) {
                categories_.noteChanged(uid);
            } else {
                queueLeavers(uid, link);
                session_.toSend.add(uid);
            }
        }
        if (joins) {
            session_.toSend.add(uid);
        }
    }

    // Queues all groups of the collection, as their cards may name who was deleted.
    void queueGroups() {
        for (const RowId row : session_.store.rows(Kind::group)) {
            const auto group = session_.store.find(row);
            const auto link = group ? session_.linkOf(group->uid) : std::nullopt;
            if (link && isOfRecord(*link)) {
                session_.toSend.add(group->uid);
            }
        }
    }

    // Queues those who left a group that is a card, as their own cards may name it.
    void queueLeavers(const std::string& group, const SyncLink& link) {
        if (!group.ends_with(":ABGroup") || link.text.empty()) {
            return;
        }
        const auto agreed = readCard(link.text);
        for (const std::string& member : agreed ? agreed->memberUids : std::vector<std::string>()) {
            session_.toSend.add(vcard::uuidOf(member) + ":ABPerson");
        }
    }

    // Notes that all is done of what the server and the log told, so that the next cycle is told what comes after.
    void finish(const std::string& state) {
        const SyncCollection& before = session_.collection;
        if (session_.again || session_.options.dryRun || (state == before.state && !log_.moved())) {
            return;
        }
        session_.save([&](ChangeSet& changes) {
            SyncCollection after = findCollection(session_.store, before.id);
            if (after.state == before.state) { // else all is to be listed, see Incoming
                after.state = state;
            }
            after.change = processed_;
            changes.sync.collections.push_back(std::move(after));
        });
    }

    Session session_;
    LocalLog log_{session_};
    Categories categories_{session_};
    Incoming incoming_{session_, categories_};
    Outgoing outgoing_{session_, categories_, incoming_};
    std::int64_t processed_ = 0; // up to which save changes here are on the server
};

} // namespace

MassDeletion::MassDeletion(Side side, std::size_t vanishing, std::size_t of)
    : std::runtime_error(massSentence(side, vanishing, of)), side_(side), vanishing_(vanishing), of_(of) {}

Summary runCycle(Store& store, std::int64_t collection, carddav::Collection& server,
                 const CycleOptions& options) {
    std::optional<CycleLock> lock;
    if (!options.dryRun) {
        lock.emplace(store);
    }
    return Cycle(store, collection, server, options).run();
}

} // namespace addressbook::sync
