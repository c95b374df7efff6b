#pragma once

// Which index serves a condition, and what is looked up in it.

#include "frameworks/AddressBook/store/explain.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/values/comparison.h"

#include <string>
#include <vector>

namespace addressbook {

// What is bound to a look-up in the table `term`: the value or limit wanted, or the least value and the one
// behind the last.
struct Span {
    Value low, high; // no value: nothing is bound
};

// How a condition is looked up, with all that is bound to its SQL.
struct IndexLookup {
    AccessPath path = AccessPath::nothing;
    std::int64_t property = 0; // its number
    std::string folded;        // the wanted text
    TrigramNeedle needle;      // AccessPath::trigram
    std::vector<Span> spans;   // looked up one after the other; a record may be in several
    std::int64_t rows = 0;     // rows of the index that were looked at to find them
};

IndexLookup chooseAccessPath(Store::Impl& impl, const Matcher& matcher);

// Returns how many candidates are few for a condition with this path: with at most so many left, they are
// checked record by record instead of querying the condition's index.
std::size_t fewRecordsFor(AccessPath path);

// Whether an index keeps this value as a number.
bool isNumeric(const Value& value);

} // namespace addressbook
