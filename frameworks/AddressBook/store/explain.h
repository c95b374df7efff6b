#pragma once

// How a search was answered. Store::explain() runs the search, by the code that runs every search, and
// returns what was done.

#include "frameworks/AddressBook/values/query.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace addressbook {

// How a condition is looked up, cheapest first. A negative comparison is looked up as its positive form, and
// the hits are subtracted from all records of the kind.
enum class AccessPath {
    nothing, // nothing can match
    uid,     // one unique id in its index, and the few unique ids that are no UUIDs one by one
    exact,   // one value in the index of values (the table term)
    prefix,  // all values that begin alike, in the index of values
    ending, // all values that end alike, in the index of values: only of properties of which that was asked for
    trigram,  // the text's trigrams as one phrase, in the index of texts (the table trigram)
    range,    // the numbers or dates on one side of a limit, in the index of values
    interval, // the dates of a range of days, in the index of values; for yearless comparisons in each year
    scan,     // all values of the property in the index of values
    everyUid  // the unique ids of all records of the kind
};

// What was done for one condition or compound of a search.
struct SearchStep {
    enum class Execution {
        skipped,  // no candidates were left
        searched, // looked up by its access path
        verified  // the few candidates that the earlier steps had left were read one by one, perhaps after
                  // a look-up that was given up
    };

    const Query* query = nullptr; // this part of the explained query, which the caller owns
    Execution execution = Execution::skipped;
    AccessPath path = AccessPath::nothing; // of a condition that was searched
    // Index rows that were looked at, without those that SQLite skipped for their label or key.
    std::int64_t indexRows = 0;
    std::int64_t records = 0;  // records that were read
    std::int64_t everyone = 0; // of a negative comparison: all records, from which hits were subtracted
    std::int64_t hits = 0;     // of this step alone
    std::chrono::nanoseconds time{};
    std::vector<SearchStep> parts; // of a compound that was searched, in the order in which they ran
};

} // namespace addressbook
