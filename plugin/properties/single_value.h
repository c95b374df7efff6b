#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// Reading, writing and removing a property of the current record that has a single value. A name that is nil
// means the unique id. Changes stay in memory until they are saved. All fail the call with kNoActiveRecord,
// as OpenProperty does, and with kInvalidPropertyType for a property with several values; writing and
// removing also with kRecordReadOnly.

// Returns the value's text, or stores a date as a time stamp in the result (singleValueAnswer). Closes the
// property.
[[nodiscard]] Answer getValueForProperty(NSString* name, fmx::Data& result);

// Sets the property to the text, converted to the property's type; nil removes the value. For a date, text
// that names none changes nothing, without an error. Returns "0", or nil with kSettingPropertyFailed.
[[nodiscard]] NSString* setValueForProperty(NSString* name, NSString* text);

// Removes the value, if there is one, and closes the property. Returns "0".
[[nodiscard]] NSString* deleteValueForProperty(NSString* name);

} // namespace koru
