#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Text properties of one's own, added to all people or all groups, by the property's own name. The kind of
// record is "person" in any letter case; any other word, "contact" too, means groups: this vocabulary is
// theirs alone, and the current record type is neither asked nor changed. All fail the call with
// kInvalidParameterValue, code only, for no kind (nil). Nothing is saved.

// Add the property to the kind's, or remove it with its values. Return "0", or nil with
// kInvalidParameterValue (code only) for no name, kNoPropertiesAdded or kNoPropertiesRemoved when it was
// there already or is not there, kCreatingPropertyFailed, kRemovingPropertyFailed.
[[nodiscard]] NSString* addCustomProperty(NSString* kind, NSString* name);
[[nodiscard]] NSString* removeCustomProperty(NSString* kind, NSString* name);

// Gives the current person or group a value, or with nil takes it away. Returns "0", or nil with
// kSettingCustomPropertyFailed.
[[nodiscard]] NSString* setCustomValue(NSString* kind, NSString* name, NSString* text);

// Returns the value of the current person or group, "empty" when there is none. The value of a property of
// another type is returned as it is, although it is no string.
[[nodiscard]] NSString* getCustomValue(NSString* kind, NSString* name);

} // namespace koru
