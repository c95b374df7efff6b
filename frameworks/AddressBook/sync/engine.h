#pragma once

// Keeping the records of an address book and the cards of one on a server in step.
//
// What both sides last agreed on is noted with each record (SyncLink::text), and what changed since is found by
// comparing with it, never by clocks. Both sides' changes of one card are brought together (merge.h); the other side's
// value of what both changed is noted as a conflict. A run that ends at any point has done a part of its work, and the
// next one goes on from there.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/sync/cycle.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace addressbook::sync {

// More than half of the cards, and more than a few, vanished on one side since the last cycle, and would now be deleted
// on the other; nothing was done. what() is a sentence for the user, without a full stop.
class MassDeletion : public std::runtime_error {
  public:
    MassDeletion(Side side, std::size_t vanishing, std::size_t of);
    // Returns the side on which they vanished: remote, when the server does not have them any more.
    [[nodiscard]] Side side() const { return side_; }
    [[nodiscard]] std::size_t vanishing() const { return vanishing_; }
    [[nodiscard]] std::size_t of() const { return of_; }

  private:
    Side side_;
    std::size_t vanishing_, of_;
};

// Brings the records of [collection] (SyncCollection::id) in [store] and the cards of [server] in step, once. What it
// throws (carddav::Error, StoreError, MassDeletion) ends it; what was done before stays done, and the next cycle goes on
// from there. Cycles of one address book wait for each other, in whatever program they are; a dry run waits for nobody.
// [store] must not be used meanwhile, but by [CycleOptions::progress], which may read.
//
// A record that has no link in any collection is local. One that was added since the collection's last cycle
// (SyncCollection::change; 0 makes all of them new) belongs to the collection from now on, if that is the default one.
Summary runCycle(Store& store, std::int64_t collection, carddav::Collection& server,
                 const CycleOptions& options = {});

} // namespace addressbook::sync
