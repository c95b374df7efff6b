#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Makes a new record of the type current, and returns its unique id; a group gets the name, when there is
// one. saveRecords adds it to the address book. Returns nil when it fails the call: kInvalidParameterValue,
// by its code alone when the type is missing.
[[nodiscard]] NSString* newRecord(NSString* type, NSString* name);

// Adds the current record to the address book when it is a new one, which is then no longer current, and
// saves all changes. Returns "0", or nil with kSaveFailed.
[[nodiscard]] NSString* saveRecords();

// Removes the record with the id from the address book and saves; the plug-in's state keeps it if it holds
// it. Returns "0", or nil with kRecordDoesNotExist, kDeleteFailed.
[[nodiscard]] NSString* deleteRecord(NSString* uniqueId);

// Removes many records and saves: "members", "groups" or, for nil, both. Without a group's id all people, but
// for the user's own card when it is to be kept, and all groups. With one the group's members are removed
// from the address book, and its subgroups only from the group. Any other word removes nothing. Returns "0",
// or nil with kInvalidRecordType (a person's id, or an unknown one), kRecordDoesNotExist, kSaveFailed.
[[nodiscard]] NSString* clearAll(NSString* groupId, NSString* what, bool keepOwnCard);

} // namespace koru
