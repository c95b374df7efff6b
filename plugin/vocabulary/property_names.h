#pragma once

#import <AddressBook/AddressBook.h>
#include <span>

namespace koru {

// A property as users name it and as the framework does. The framework's constant is given by its address,
// since its value is known only once the framework is loaded.
struct PropertyName {
    NSString* key; // lower case, without blanks
    NSString* const* property;
};

// Returns all property names, in the order in which they are tried.
[[nodiscard]] std::span<const PropertyName> propertyNames();

} // namespace koru

// Returns the framework's name for a property: the name is matched without regard to letter case and blanks
// with the keys of the table, and as it stands with the framework's own names. nil when nothing matches. No
// name at all (nil) matches the first row, the unique id, on purpose. Never fails the call.
[[nodiscard]] NSString* toPropertyString(NSString* name);

// Makes a property of the current record the open one, with a copy of its entries when it has several values.
// Returns 1, or the number of entries; -1 when it fails the call: kInvalidPropertyName (nothing has
// changed), kErrorInProperty when the current record type has no such property (it is open nevertheless),
// kExceptionCaught.
int OpenProperty(NSString* name);
