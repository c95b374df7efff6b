#pragma once

// How a search was answered. Store::explain runs it and tells what was really done, by the code that runs
// every search.

#include "frameworks/AddressBook/values/query.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace addressbook {

// How a condition is looked up, cheapest first. A negative comparison is looked up as its positive form,
// whose hits are taken away from all records of the kind.
enum class AccessPath {
    nothing,  // nothing can match
    uid,      // one unique id in the index of unique ids, and those few that are no UUIDs
    exact,    // one value in the index of values
    prefix,   // the values with one beginning there
    trigram,  // the phrase of trigrams in the index of texts
    range,    // the numbers or dates on one side of a value in the index of values
    interval, // the dates of some days there; with a yearless comparison, of these days in each year
    scan,     // all values of the property there
    everyUid  // the unique ids of all records
};

// One condition or compound of a search.
struct SearchStep {
    enum class Execution {
        skipped,  // nothing was left to look at
        searched, // by its access path
        verified  // the few records that the steps before had left were read one by one, perhaps after a
                  // search that was given up
    };

    const Query* query = nullptr; // the part of the explained query; owned by whoever asked
    Execution execution = Execution::skipped;
    AccessPath path = AccessPath::nothing; // of a condition that was searched
    // Rows that indexes gave; those of other labels and keys than the wanted ones are left out on the way.
    std::int64_t indexRows = 0;
    std::int64_t records = 0;  // records that were read
    std::int64_t everyone = 0; // of a negative comparison: all records, from which the others were taken away
    std::int64_t hits = 0;     // of this step alone
    std::chrono::nanoseconds time{};
    std::vector<SearchStep> parts; // of a compound that was searched, in the order in which they ran
};

} // namespace addressbook
