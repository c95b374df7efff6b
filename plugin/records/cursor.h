#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Move the cursor of the current record type to the first search result, or on by one, close the open
// property and open the record there. Return what OpenRecordAtGlobalIndex returns.
[[nodiscard]] NSString* openFirstRecord();
[[nodiscard]] NSString* openNextRecord();

// Makes the record with the id current, and its type the current record type; moves no cursor. Returns "0",
// or nil with kRecordDoesNotExist: the type has changed then, too, and no record of that type is current.
[[nodiscard]] NSString* openRecord(NSString* uniqueId);

} // namespace koru

// Makes the record at the cursor of the current record type current, and returns its unique id; "END" when
// the cursor is beyond the results. Returns nil when it fails the call: kInvalidCallOrder (there was no
// search for that type), kExceptionCaught. After "END" and nil there is no current record of that type.
[[nodiscard]] NSString* OpenRecordAtGlobalIndex();
