#include "frameworks/AddressBook/sync/listing.h"

#include "frameworks/AddressBook/carddav/etag.h"
#include "frameworks/AddressBook/sync/links.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>

namespace addressbook::sync {

namespace {

class Lister {
  public:
    explicit Lister(Session& session) : session_(session) {}

    Listing run() {
        Listing listing;
        listing.state = session_.collection.state;
        everything_ = listing.state.empty();
        session_.tell(CycleProgress::Stage::listing, 0, 0);
        for (auto progress = carddav::Progress::more; progress != carddav::Progress::complete;) {
            carddav::Changes changes = session_.server.changes(
                listing.state, [&](carddav::Change&& change) { take(std::move(change)); });
            progress = changes.progress;
            if (progress == carddav::Progress::beginAnew) {
                if (begunAnew_) {
                    throw carddav::Error(
                        carddav::ErrorKind::malformedAnswer,
                        "the server forgets what it told of its cards as soon as it has told it");
                }
                begunAnew_ = everything_ = true;
                told_.clear();
                seen_.clear();
                changes.state.clear();
            }
            listing.state = std::move(changes.state);
        }
        for (const auto& [href, gone] : told_) {
            (gone ? listing.gone : listing.changed).push_back(href);
        }
        if (everything_) {
            addUnseen(listing.gone);
        }
        return listing;
    }

  private:
    void take(carddav::Change&& change) {
        const auto link = session_.store.syncLink(session_.collection.id, change.href);
        if (everything_) {
            note(change);
        }
        // A repeated telling counts: what was to be fetched may be gone, and the reverse.
        const bool lost = link && session_.recovers() && isOfRecord(*link) && !session_.store.find(link->uid);
        if (change.removed ? !link : link && !lost && carddav::sameEtag(link->etag, change.etag)) {
            told_.erase(change.href);
        } else {
            told_.insert_or_assign(std::move(change.href), change.removed);
        }
    }

    void note(const carddav::Change& change) {
        const std::uint64_t hash = std::hash<std::string>()(change.href);
        if (change.removed) {
            std::erase(seen_, hash);
        } else {
            seen_.push_back(hash);
        }
    }

    // Adds the linked cards that a listing of all cards did not tell.
    void addUnseen(std::vector<std::string>& gone) {
        std::sort(seen_.begin(), seen_.end());
        session_.store.visitSyncLinks(session_.collection.id, [&](SyncLink&& link) {
            const std::uint64_t hash = std::hash<std::string>()(link.href);
            if (link.href.starts_with('/') && !std::binary_search(seen_.begin(), seen_.end(), hash) &&
                !told_.contains(link.href)) {
                gone.push_back(std::move(link.href));
            }
        });
    }

    Session& session_;
    std::unordered_map<std::string, bool> told_; // href -> whether it is gone
    bool everything_ = false, begunAnew_ = false;
    std::vector<std::uint64_t> seen_; // hashes of the hrefs that a listing of all cards told
};

} // namespace

Listing readListing(Session& session) {
    return Lister(session).run();
}

std::size_t countCards(const Session& session) {
    std::size_t count = 0;
    session.store.visitSyncLinks(session.collection.id, [&](SyncLink&& link) {
        count += isOfRecord(link) && !link.leaves && link.href.starts_with('/') ? 1 : 0;
    });
    return count;
}

} // namespace addressbook::sync
