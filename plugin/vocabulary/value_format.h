#pragma once

#import "plugin/shell/handler_frame.h"
#import <AddressBook/AddressBook.h>
#include <cstdint>

namespace koru {

// Returns the result for a property with a single value: empty for no value, a time stamp (stored in the
// result) for a date, "ShowAsCompany" or "ShowAsPerson" when the name is exactly "Person Flags", otherwise
// the value's text.
[[nodiscard]] Answer singleValueAnswer(id value, ABPropertyType type, NSString* name, fmx::Data& result);

// Returns the result for one entry of a property with several values: with a key that field of an address
// (kInvalidKey when no field is called so), a time stamp for a date, otherwise the value's text.
[[nodiscard]] Answer entryAnswer(id value, ABPropertyType type, NSString* key, fmx::Data& result);

} // namespace koru

// Returns a value of a property: the whole value of one with a single value; of one with several the entry
// with the identifier; with a key that field of an address. nil when there is none, or when it fails the
// call: as OpenProperty does, and with kUidMissing, kInvalidKey, kInvalidPropertyType, kUidDoesNotExist,
// kNotAnAddress, kExceptionCaught. Nothing uses the flags.
[[nodiscard]] id GetPropertyValue(NSString* name, NSString* identifier, NSString* key, std::int32_t flags);
