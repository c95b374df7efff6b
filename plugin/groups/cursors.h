#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Walks through three lists: the groups that contain the current record (parents), the people in the current
// group (members), and the groups directly inside it (subgroups). A "first" function keeps the list as it is
// at that time and returns the identifier of its first element; a "next" function returns that of the next
// element of the kept list, whatever record is current by then. Both return "END" when there is no such
// element, and nil when they fail the call.

// Fail with kNoActiveRecord when groups are current and no group is open; nextParentId() also with
// kInvalidCallOrder when no list is kept.
[[nodiscard]] NSString* firstParentId();
[[nodiscard]] NSString* nextParentId();

// Fail with kInvalidCallOrder when no group is open, nextMemberId() also when no list is kept. The current
// record type does not matter.
[[nodiscard]] NSString* firstMemberId();
[[nodiscard]] NSString* nextMemberId();

// firstSubgroupId() fails with kInvalidCallOrder when no group is open. nextSubgroupId() fails as
// nextParentId() does, and never returns the second element: its bounds test is the wrong way round, on
// purpose. While elements are left it returns "END"; after the last it fails the call with the framework's
// range exception.
[[nodiscard]] NSString* firstSubgroupId();
[[nodiscard]] NSString* nextSubgroupId();

} // namespace koru
