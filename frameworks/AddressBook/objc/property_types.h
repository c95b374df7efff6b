#pragma once

// Properties by class: their types, the check of values against them, and searches by them. People and groups
// differ only in the kind.

#include "frameworks/AddressBook/objc/record.h"

namespace addressbook {

// The object as a value of this type. Raises NSInvalidArgumentException, with a sentence that names the
// property, when it is none. An empty multi-value is no value.
Value requireValue(id object, int type, NSString* property);

NSInteger addProperties(Kind kind, NSDictionary* properties);
NSInteger removeProperties(Kind kind, NSArray* properties);
NSArray* propertyNames(Kind kind);
ABPropertyType typeOfProperty(Kind kind, NSString* property);
ABSearchElement* searchElement(Kind kind, NSString* property, NSString* label, NSString* key, id value,
                               ABSearchComparison comparison);

} // namespace addressbook
