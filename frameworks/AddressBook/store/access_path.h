#pragma once

// Which index serves a condition, and what is looked up in it.

#include "frameworks/AddressBook/store/explain.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/values/comparison.h"

#include <string>
#include <vector>

namespace addressbook {

// What is bound to one look-up in the table `term`: in `low` the value or limit wanted; or a half-open range
// from `low` to `high`.
struct Span {
    Value low, high; // no value: nothing is bound
};

// How a condition is looked up, with all that is bound to its SQL.
struct IndexLookup {
    AccessPath path = AccessPath::nothing;
    std::int64_t property = 0; // its id; 0 for the unique id, and where nothing can match
    std::string folded;        // the wanted text
    TrigramNeedle needle;      // AccessPath::trigram
    std::vector<Span> spans;   // looked up one after the other; a record may be in several
    std::int64_t rows = 0;     // of the index that were read to choose
};

// Chooses the cheapest path for a condition, and makes ready what it looks up. Reads the index where the
// years of a yearless interval must be known. Throws StoreError.
IndexLookup chooseAccessPath(Store::Impl& impl, const Matcher& matcher);

// Returns how many candidates are few for a condition with this path: with at most so many left, they are
// checked record by record instead of querying the condition's index.
std::size_t fewRecordsFor(AccessPath path);

// Whether an index keeps this value as a number.
bool isNumeric(const Value& value);

} // namespace addressbook
