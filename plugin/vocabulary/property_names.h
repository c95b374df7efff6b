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

// Returns the framework's name of the property with this name: a key of the table, whatever its letter case
// and blanks, or one of the framework's own names exactly. nil when there is none. nil as the name gives the
// first row, the unique id, on purpose. Never fails the call.
[[nodiscard]] NSString* toPropertyString(NSString* name);

// Opens a property of the current record: keeps its name and, when it has several values, a copy of its
// entries. Returns 1, or the number of entries; -1 when it fails the call: kInvalidPropertyName (nothing has
// changed), kErrorInProperty when the current record type has no such property (it is open nevertheless),
// kExceptionCaught.
int OpenProperty(NSString* name);
