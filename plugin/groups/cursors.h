#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// The walks through three lists of the address book's groups: the groups that contain the current record, the
// people in the current group, and the groups directly inside it. "First" keeps the list as it is then and
// returns the identifier of its first element, "next" that of the following one in the kept list, whatever is
// current by then; "END" when there is none. They return nil when they fail the call.

// Fail with kNoActiveRecord when groups are current and no group is open; "next" with kInvalidCallOrder
// without a list.
[[nodiscard]] NSString* firstParentId();
[[nodiscard]] NSString* nextParentId();

// Fail with kInvalidCallOrder without an open group, "next" also without a list. The record type does not
// matter.
[[nodiscard]] NSString* firstMemberId();
[[nodiscard]] NSString* nextMemberId();

// "First" fails with kInvalidCallOrder without an open group. "Next" fails as nextParentId does, and never
// gets to the second element: its bounds test is the wrong way round, and stays so. It returns "END" before
// the end of the list and fails the call with the range exception behind it.
[[nodiscard]] NSString* firstSubgroupId();
[[nodiscard]] NSString* nextSubgroupId();

} // namespace koru
