#pragma once

#import <AddressBook/AddressBook.h>
#include <cstdint>
#include <span>

// A comparison of the search function. The interval comparisons take a number whatever the type of the
// property.
struct Comparison {
    NSString* name;
    ABSearchComparison value;
    bool isInterval = false;
};

// All comparisons, in the order of their values.
[[nodiscard]] std::span<const Comparison> comparisons();

// The comparison of a name, with its letter case; "Equal" for nil and for any name that is none.
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

// Builds the condition and keeps it in g_searchelement, joined with the one kept there when a conjunction
// says so. Fails the call with kInvalidCallOrder (a conjunction, but nothing to join), kInvalidParameterValue
// (an unknown conjunction), kExceptionCaught. Always answers 0.
int manageSearch(const SearchArguments& arguments);

// Searches, and keeps what was found as the result list of the type searched; answers how many in decimal
// digits. Neither the cursor nor the current record moves. nil when it failed the call: as manageSearch, and
// with kInvalidParameterValue when the type is missing.
[[nodiscard]] NSString* search(const SearchArguments& arguments);
