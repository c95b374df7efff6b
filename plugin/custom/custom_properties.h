#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Custom properties: text properties that users add to all people or all groups, under a name of their own.
// The kind of record is "person" in any letter case; any other word, also "contact", means groups, unlike in
// the other functions. The current record type is neither read nor changed. All fail the call with
// kInvalidParameterValue, code only, when the kind is nil. Changes stay in memory until they are saved.

// Add a property to a kind of record, and remove one with all its values. Return "0", or nil when they fail
// the call: kInvalidParameterValue (code only) when the name is nil; kNoPropertiesAdded when the property is
// there already, kNoPropertiesRemoved when there is none; kCreatingPropertyFailed, kRemovingPropertyFailed.
[[nodiscard]] NSString* addCustomProperty(NSString* kind, NSString* name);
[[nodiscard]] NSString* removeCustomProperty(NSString* kind, NSString* name);

// Sets the property of the current person or group to the text, or removes its value when that is nil.
// Returns "0", or nil with kSettingCustomPropertyFailed.
[[nodiscard]] NSString* setCustomValue(NSString* kind, NSString* name, NSString* text);

// Returns the property's value of the current person or group, the word "empty" when there is none. A value
// of another type than text is returned as the object it is, although it is no NSString.
[[nodiscard]] NSString* getCustomValue(NSString* kind, NSString* name);

} // namespace koru
