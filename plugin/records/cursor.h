#pragma once

#import <Foundation/Foundation.h>

// Makes the record at the cursor of the current record type's side current, and answers its unique id; "END",
// with no current record on that side, when the cursor stands beyond the list. nil, with no current record
// either, when it failed the call: kInvalidCallOrder (no such search was made), kExceptionCaught.
[[nodiscard]] NSString* OpenRecordAtGlobalIndex();

// Sets the cursor of the current record type's side to the first result, or moves it on by one, and opens the
// record there (OpenRecordAtGlobalIndex). The open property is closed.
[[nodiscard]] NSString* openFirstRecord();
[[nodiscard]] NSString* openNextRecord();

// Makes the record with the id current, and its type; no cursor moves. "0", or nil with
// kRecordDoesNotExist: then the type has changed all the same, and no record of that type is current.
[[nodiscard]] NSString* openRecord(NSString* uniqueId);
