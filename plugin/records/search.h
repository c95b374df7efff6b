#pragma once

#import <AddressBook/AddressBook.h>
#include <cstdint>
#include <span>

namespace koru {

// A comparison of the search function. The interval comparisons take a number whatever the type of the
// property.
struct Comparison {
    NSString* name;
    ABSearchComparison value;
    bool isInterval = false;
};

// Returns all comparisons, in the order of their values.
[[nodiscard]] std::span<const Comparison> comparisons();

// Returns the comparison of a name, whose letter case counts; "Equal" for nil and for any other name.
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

// Searches, and keeps what was found as the result list of the type searched. Returns how many were found, in
// decimal digits. Neither the cursor nor the current record changes. Returns nil when it fails the call: as
// manageSearch does, and with kInvalidParameterValue when the type is missing.
[[nodiscard]] NSString* search(const SearchArguments& arguments);

} // namespace koru

// Builds the condition and keeps it in g_searchelement, joined with the one kept there when a conjunction
// says so. Fails the call with kInvalidCallOrder (a conjunction, but nothing to join), kInvalidParameterValue
// (an unknown conjunction), kExceptionCaught. Always returns 0.
int manageSearch(const koru::SearchArguments& arguments);
