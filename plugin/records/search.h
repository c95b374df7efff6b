#pragma once

#import <AddressBook/AddressBook.h>
#include <cstdint>
#include <span>

namespace koru {

// A comparison of the search function. The value of an interval comparison is a number, whatever the type of
// the property.
struct Comparison {
    NSString* name;
    ABSearchComparison value;
    bool isInterval = false;
};

// Returns all comparisons, in the order of their values.
[[nodiscard]] std::span<const Comparison> comparisons();

// Returns the comparison with a name, in exactly this letter case; "Equal" for nil and any other name.
[[nodiscard]] const Comparison& comparisonNamed(NSString* name);

// The arguments of a search; an empty one is nil.
struct SearchArguments {
    NSString* type;
    NSString* property;
    NSString* label;
    NSString* key;
    NSString* value;
    NSString* comparison;
    NSString* conjunction;
};

// Searches, and keeps the records found as the result list of the type searched. Returns their number in
// decimal digits. Changes neither cursor nor current record. Returns nil when it fails the call: as
// manageSearch does, and with kInvalidParameterValue when the type is nil.
[[nodiscard]] NSString* search(const SearchArguments& arguments);

} // namespace koru

// Makes the condition of the arguments and keeps it in g_searchelement: in place of the one there, or joined
// with it when there is a conjunction. Fails the call with kInvalidCallOrder (a conjunction, but no condition
// to join), kInvalidParameterValue (an unknown conjunction), kExceptionCaught. Always returns 0.
int manageSearch(const koru::SearchArguments& arguments);
