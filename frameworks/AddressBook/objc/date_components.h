#pragma once

// Properties that the framework tells as date components: how what is stored for them (storedForComponents)
// becomes components and the other way round. A stored date in the year kNoYear has no year as components.

#include "frameworks/AddressBook/values/calendar.h"

#import <Foundation/Foundation.h>

namespace addressbook {

// Returns NSDateComponents, or a list of them with the labels and identifiers of the dates; nil for no value.
id componentsFrom(const Value& stored);

// Returns what to store for an object of the property's type: of a day, its noon in local time. Raises
// NSInvalidArgumentException, with a sentence that names the property, for an object of another type and for
// components that do not name a day.
Value requireComponents(id object, int type, NSString* property);

// Returns what a search for these components compares with what is stored.
Value soughtComponents(NSDateComponents* components, NSString* property);

} // namespace addressbook
