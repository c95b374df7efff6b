#pragma once

// Converts properties of which the framework speaks as date components between those and what is stored for
// them (storedForComponents). A stored date in the year kNoYear has no year as components.

#include "frameworks/AddressBook/values/calendar.h"

#import <Foundation/Foundation.h>

namespace addressbook {

// Returns NSDateComponents, or a list of them with the labels and identifiers of the dates; nil for no value.
id componentsFrom(const Value& stored);

// Returns what to store for an object of the property's type; for a day that is its noon.
// Raises NSInvalidArgumentException, with a sentence that names the property, for an object of another type
// and for components that do not name a day.
Value requireComponents(id object, int type, NSString* property);

// Returns the value with which a search for these components compares what is stored.
Value soughtComponents(NSDateComponents* components, NSString* property);

} // namespace addressbook
