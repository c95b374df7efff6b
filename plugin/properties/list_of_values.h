#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Lists the groups that the current person or group belongs to ("groups"), or the people in the current group
// ("members"), by identifier ("UID") or by name ("name"), with a carriage return between them and in the
// framework's order; the words in any letter case. Empty when there are none. Returns nil when it fails the
// call: kInvalidParameterCount for two missing words, kInvalidParameterValue for others, and for the members
// of a person.
[[nodiscard]] NSString* listOfValues(NSString* what, NSString* field);

} // namespace koru
