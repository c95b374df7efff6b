#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Moves the cursor of the current record type to the first result, or on by one, closes the open property and
// opens the record there. Returns what OpenRecordAtGlobalIndex does.
[[nodiscard]] NSString* openFirstRecord();
[[nodiscard]] NSString* openNextRecord();

// Makes the record with the id current, and its type the current one; moves no cursor. Returns "0", or nil
// with kRecordDoesNotExist: then the type has changed all the same, and no record of that type is current.
[[nodiscard]] NSString* openRecord(NSString* uniqueId);

} // namespace koru

// Makes the record at the cursor of the current record type current, and returns its unique id; "END" when
// the cursor is beyond the results. Returns nil when it fails the call: kInvalidCallOrder (no such search was
// made), kExceptionCaught. With "END" and nil there is no current record of that type.
[[nodiscard]] NSString* OpenRecordAtGlobalIndex();
