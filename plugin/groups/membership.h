#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Add people and subgroups to the current group, by their identifiers, and remove them from it. The change
// stays in memory until it is saved. Return "0", also when the framework refuses the change (a member that is
// there already, a group inside itself); nil when they fail the call: kRecordReadOnly, kInvalidCallOrder when
// no group is open, kUidDoesNotExist; for subgroups also kInvalidRecordType, and addPerson() alone also
// kNoActiveRecord.
[[nodiscard]] NSString* addPerson(NSString* uniqueId);
[[nodiscard]] NSString* removePerson(NSString* uniqueId);
[[nodiscard]] NSString* addSubgroup(NSString* uniqueId);
[[nodiscard]] NSString* removeSubgroup(NSString* uniqueId);

} // namespace koru
