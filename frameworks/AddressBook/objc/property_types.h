#pragma once

// Properties by class: their types, the check of values against them, and searches by them. People and groups
// differ only in the kind.

#include "frameworks/AddressBook/objc/record.h"

namespace addressbook {

// Returns the object as a value of this type; an empty multi-value is no value. Raises
// NSInvalidArgumentException, with a sentence that names the property, for an object of another type.
Value requireValue(id object, int type, NSString* property);

// Adds custom properties, given as names with their types; removes them with their values. Both return how
// many they added or removed, or -1 for arguments of the wrong class and for a book that cannot be written.
NSInteger addProperties(Kind kind, NSDictionary* properties);
NSInteger removeProperties(Kind kind, NSArray* properties);
// Returns the names of all properties, built-in and custom.
NSArray* propertyNames(Kind kind);
// Returns the property's type, kABErrorInProperty for an unknown one.
ABPropertyType typeOfProperty(Kind kind, NSString* property);
// Returns a search element; its arguments are those of searchElementForProperty:label:key:value:comparison:.
ABSearchElement* searchElement(Kind kind, NSString* property, NSString* label, NSString* key, id value,
                               ABSearchComparison comparison);

} // namespace addressbook
