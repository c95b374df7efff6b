#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Add and remove people and subgroups, named by their identifiers, of the current group. The change stays in
// memory until it is saved. Return "0", also when the framework refuses (a member twice, a group inside
// itself); nil when they fail the call: kRecordReadOnly, kInvalidCallOrder without an open group,
// kUidDoesNotExist, for subgroups kInvalidRecordType, and addPerson alone also kNoActiveRecord.
[[nodiscard]] NSString* addPerson(NSString* uniqueId);
[[nodiscard]] NSString* removePerson(NSString* uniqueId);
[[nodiscard]] NSString* addSubgroup(NSString* uniqueId);
[[nodiscard]] NSString* removeSubgroup(NSString* uniqueId);

} // namespace koru
