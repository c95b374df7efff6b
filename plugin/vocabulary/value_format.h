#pragma once

#import "plugin/shell/handler_frame.h"
#import <AddressBook/AddressBook.h>
#include <cstdint>

namespace koru {

// Returns the answer for a property with a single value: empty text for no value, a time stamp (stored in the
// result) for a date, "ShowAsCompany" or "ShowAsPerson" when the name is exactly "Person Flags", otherwise
// the value's text.
[[nodiscard]] Answer singleValueAnswer(id value, ABPropertyType type, NSString* name, fmx::Data& result);

// Returns the answer for one entry of a property with several values: with a key the text of that field of an
// address (kInvalidKey when there is no field of that name), a time stamp for a date, otherwise the value's
// text.
[[nodiscard]] Answer entryAnswer(id value, ABPropertyType type, NSString* key, fmx::Data& result);

} // namespace koru

// Opens a property and returns a value of it: the value of one with a single value, the entry with the
// identifier of one with several, or with a key that field of an address. nil when there is no value, or when
// it fails the call: as OpenProperty does, and with kUidMissing, kInvalidKey, kInvalidPropertyType,
// kUidDoesNotExist, kNotAnAddress, kExceptionCaught. The flags are not used.
[[nodiscard]] id GetPropertyValue(NSString* name, NSString* identifier, NSString* key, std::int32_t flags);
