#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Makes a new record of the type, makes it the current one, and returns its unique id. A group gets the name
// unless that is nil. saveRecords() adds the record to the address book. Returns nil when it fails the call
// with kInvalidParameterValue; code only when the type is nil.
[[nodiscard]] NSString* newRecord(NSString* type, NSString* name);

// Adds the current record to the address book when it is a new one, and saves all changes. The new record is
// no longer current afterwards. Returns "0", or nil with kSaveFailed.
[[nodiscard]] NSString* saveRecords();

// Removes the record with the id from the address book and saves. A current record stays current. Returns
// "0", or nil with kRecordDoesNotExist, kDeleteFailed.
[[nodiscard]] NSString* deleteRecord(NSString* uniqueId);

// Removes many records and saves. [what] is "members", "groups", or nil for both; any other word removes
// nothing. Without a group's id (nil), removes all people, except the user's own card when [keepOwnCard], and
// all groups. With one, removes the group's members from the address book, whoever they are, and its
// subgroups only from the group. Returns "0", or nil with kInvalidRecordType (a person's id, or an unknown
// one), kRecordDoesNotExist, kSaveFailed.
[[nodiscard]] NSString* clearAll(NSString* groupId, NSString* what, bool keepOwnCard);

} // namespace koru
