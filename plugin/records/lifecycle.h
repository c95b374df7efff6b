#pragma once

#import <Foundation/Foundation.h>

// Makes a new record of the type current, and answers its unique id; a group gets the name, when there is
// one. It enters the address book with saveRecords. nil when it failed the call: kInvalidParameterValue, when
// the type is missing by its code alone.
[[nodiscard]] NSString* newRecord(NSString* type, NSString* name);

// Adds the current record to the address book when it is a new one, which is then no longer current, and
// saves all changes. "0", or nil with kSaveFailed.
[[nodiscard]] NSString* saveRecords();

// Removes the record with the id from the address book and saves; the plug-in's state still holds it if it
// did. "0", or nil with kRecordDoesNotExist, kDeleteFailed.
[[nodiscard]] NSString* deleteRecord(NSString* uniqueId);

// Removes many records and saves: "members", "groups" or, for nil, both. Without a group's id all people, but
// for the user's own card when it is to be kept, and all groups. With one the group's members are removed
// from the address book, and its subgroups only from the group. Any other word removes nothing. "0", or nil
// with kInvalidRecordType (a person's id, or an unknown one), kRecordDoesNotExist, kSaveFailed.
[[nodiscard]] NSString* clearAll(NSString* groupId, NSString* what, bool keepOwnCard);
