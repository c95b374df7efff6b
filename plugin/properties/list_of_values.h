#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Returns the groups that the current person or group belongs to ([what] is "groups"), or the people in the
// current group ("members"), by identifier ([field] is "UID") or name ("name"), in the framework's order and
// separated by carriage returns. The words may be in any letter case. Empty when there are none. Returns nil
// when it fails the call: kInvalidParameterCount when both words are nil, kInvalidParameterValue for other
// words, and for the members of a person.
[[nodiscard]] NSString* listOfValues(NSString* what, NSString* field);

} // namespace koru
