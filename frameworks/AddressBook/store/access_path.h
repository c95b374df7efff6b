#pragma once

// The choice of an access path: which index answers a condition, and what is looked up in it.

#include "frameworks/AddressBook/store/explain.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/values/comparison.h"

#include <string>
#include <vector>

namespace addressbook {

// What is bound to one look-up in the table `term`: a value or limit in `low`, or the half-open range from
// `low` up to but without `high`.
struct Span {
    Value low, high; // no value: nothing is bound
};

// The chosen access path of a condition, with everything that is bound to its SQL.
struct IndexLookup {
    AccessPath path = AccessPath::nothing;
    std::int64_t property = 0; // its id; 0 for the unique id, and where nothing can match
    std::string folded;        // the wanted text, folded
    TrigramNeedle needle;      // AccessPath::trigram
    std::vector<Span> spans;   // looked up one after the other; a record may be in several
    std::int64_t rows = 0;     // index rows that were read to make the choice
};

// Chooses the cheapest access path for a condition and prepares its look-up. For a yearless interval this
// reads the index, to learn the years in which there are dates. Throws StoreError.
IndexLookup chooseAccessPath(Store::Impl& impl, const Matcher& matcher);

// Returns the number of candidates up to which it is cheaper to check them record by record than to look the
// condition up by [path].
std::size_t fewRecordsFor(AccessPath path);

// Whether [path] looks for beginnings: of texts, or of texts backwards, which are their endings.
constexpr bool isOfBeginnings(AccessPath path) {
    return path == AccessPath::prefix || path == AccessPath::ending;
}

// Whether the index of values keeps [value] as a number.
bool isNumeric(const Value& value);

} // namespace addressbook
