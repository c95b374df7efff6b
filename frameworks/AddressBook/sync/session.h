#pragma once

// What the parts of one cycle share.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/sync/cycle.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace addressbook::sync {

// Records and cards are handled this many at a time, or fewer when they are large: what a cycle holds in memory.
inline constexpr std::size_t kBatchCards = 200;
inline constexpr std::size_t kBatchBytes = std::size_t{8} << 20;

// Records that are to be looked at for sending, each once.
class Queue {
  public:
    void add(const std::string& uid) {
        if (known_.insert(uid).second) {
            uids_.push_back(uid);
        }
    }
    // Takes all that are in it.
    std::vector<std::string> take() {
        known_.clear();
        return std::exchange(uids_, {});
    }
    [[nodiscard]] bool empty() const { return uids_.empty(); }

  private:
    std::vector<std::string> uids_;
    std::unordered_set<std::string> known_;
};

struct Session {
    Session(Store& book, carddav::Collection& cards, const CycleOptions& wanted, SyncCollection which)
        : store(book), server(cards), options(wanted), collection(std::move(which)) {}

    Store& store;
    carddav::Collection& server;
    const CycleOptions& options;
    SyncCollection collection;
    Summary summary;

    // Etags of cards that were fetched in this cycle and have none in their links: those that are yet to be sent, so
    // that a run that ends before fetches them again, and those of servers that tell none (empty).
    std::unordered_map<std::string, std::string> etags;
    Queue toSend;
    // Whether something could not be done just now, and is to be done in the next cycle: what this one was told of is
    // then told again.
    bool again = false;

    // Has [plan] fill a ChangeSet by what is stored, and saves it; anew when another program's save came between, so
    // that it must set what it gives back, not add to it. A dry run saves nothing.
    void save(const std::function<void(ChangeSet&)>& plan);
    // Whether the save of this number was one of this cycle's.
    [[nodiscard]] bool isOwn(std::int64_t change) const { return saves_.contains(change); }

    // Whether the book was repaired since the last cycle: records that are missing were lost, and are fetched again.
    [[nodiscard]] bool recovers() const { return collection.change < 0; }

    // Returns the link by which the record belongs to this collection; nothing when it does not.
    [[nodiscard]] std::optional<SyncLink> linkOf(std::string_view uid) const;
    void tell(CycleProgress::Stage stage, std::size_t done, std::size_t total) const {
        if (options.progress) {
            options.progress({stage, done, total});
        }
    }

  private:
    std::unordered_set<std::int64_t> saves_;
};

// Returns the card in [text]; nothing when there is none, or more than that.
std::optional<vcard::Card> readCard(std::string_view text);

// Returns a name to show.
std::string nameOf(const vcard::Card& card);

} // namespace addressbook::sync
