#pragma once

// What a cycle of keeping in step is told, and tells.

#include "frameworks/AddressBook/sync/conflict.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace addressbook::sync {

// A card or record that one side did not take. It is told once: what the server did not take for good is sent again when
// it has changed, and what it could not take just now in the next cycle.
struct Refusal {
    std::string uid;  // of the record; empty when the card has none here
    std::string href; // of the card; empty when it has none there
    std::string name; // to show; may be empty
    Side by =
        Side::remote;   // who did not take it: the server (remote), or we (local: the card cannot be read)
    std::string reason; // a sentence without a full stop
};

// What a cycle did; with dryRun what it would do.
struct Summary {
    std::size_t fetched = 0;     // records added or changed here
    std::size_t removedHere = 0; // records deleted here
    std::size_t sent = 0;        // cards created or changed there
    std::size_t removedThere = 0;
    std::size_t merged = 0;    // records that both sides had changed
    std::size_t conflicts = 0; // values that had to yield, noted in the store
    std::vector<Refusal> refused;
};

// How far a cycle is, for a progress display.
struct CycleProgress {
    enum class Stage { listing, fetching, sending };
    Stage stage = Stage::listing;
    std::size_t done = 0, total = 0; // cards; total 0: not known
};

struct CycleOptions {
    bool dryRun = false; // asks the server and tells what would be done; changes nothing, here or there
    bool force = false;  // also when more than half of the cards vanished on one side
    std::function<void(const CycleProgress&)> progress;
};

} // namespace addressbook::sync
