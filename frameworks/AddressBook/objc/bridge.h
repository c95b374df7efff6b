#pragma once

// Converts between Foundation's objects and the store's values; nothing else does.

#include "frameworks/AddressBook/values/value.h"

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Converts text without loss, lone surrogates included (as the three bytes of their code point); "" for nil.
std::string textFrom(NSString* string);
NSString* stringFrom(std::string_view text);

// Returns the bytes of a constant of the compiler, which are its text when they are ASCII; nothing for any
// other string.
std::optional<std::string_view> constantBytes(NSString* string);

Date dateFrom(NSDate* date);

// Returns the value of a property list object, an NSDateComponents or an ABMultiValue; nothing for an object
// that no property can hold. NSNull and nil give no value.
std::optional<Value> valueFrom(id object);

// Returns an immutable, autoreleased object; nil for no value.
id objectFrom(const Value& value);

// Returns the object of a value's bytes (encodeValue), nil for no bytes. Throws DamagedRecord.
id objectFromEncoded(std::string_view value);

// Returns a label or key; the well-known ones are made once.
NSString* wordFrom(std::string_view word);

// Returns what stands for a value in a list: NSNull for nil.
id objectOrNull(id object);

} // namespace addressbook
