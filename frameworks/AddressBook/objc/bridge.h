#pragma once

// Between Foundation's objects and the store's values: the one place where they are turned into one another.

#include "frameworks/AddressBook/values/value.h"

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Text keeps everything, lone surrogates included (as the three bytes of their code point). nil gives "".
std::string textFrom(NSString* string);
NSString* stringFrom(std::string_view text);

Date dateFrom(NSDate* date);

// The value of a property list object, an NSDateComponents or an ABMultiValue; nothing for an object that no
// property can hold. NSNull and nil give no value.
std::optional<Value> valueFrom(id object);

// An immutable, autoreleased object; nil for no value.
id objectFrom(const Value& value);

// Returns the object of a value's bytes (encodeValue), nil for no bytes. Throws DamagedRecord.
id objectFromEncoded(std::string_view value);

// A label or key: the well-known ones are made once.
NSString* wordFrom(std::string_view word);

// A value that a list holds: NSNull for no value.
id objectOrNull(id object);

} // namespace addressbook
