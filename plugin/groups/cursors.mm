#import "plugin/groups/cursors.h"

#import "plugin/groups/parent_groups.h"
#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// The state variables of one of the walks.
struct Walk {
    Retained<NSArray>& list;
    Retained<NSObject>& current;
    std::uint32_t& index;
};

Walk parents() {
    return {state.gParentGroups, state.gCurrentGroupParentID, state.gCurrentGroupParentIDIndex};
}

Walk members() {
    return {state.gGroupMembers, state.gCurrentMember, state.gCurrentMemberIndex};
}

Walk subgroups() {
    return {state.gGroupSubgroups, state.gCurrentSubgroup, state.gCurrentSubgroupIndex};
}

// Makes the element at the index the current one and returns it; nil, and nothing is changed, at the end.
ABRecord* take(const Walk& walk) {
    if (walk.index >= [walk.list.get() count]) {
        return nil;
    }
    walk.current.reset();
    walk.current = Retained<NSObject>::retain([walk.list.get() objectAtIndex:walk.index]);
    return static_cast<ABRecord*>(walk.current.get());
}

// Makes the next element current and returns its identifier; "END" at the end.
NSString* step(const Walk& walk) {
    ABRecord* record = take(walk);
    if (record == nil) {
        return @"END";
    }
    NSString* uniqueId = [record uniqueId];
    ++walk.index;
    return uniqueId;
}

// Like step(), among the parents, but moves on even if the framework raises instead of giving the identifier.
NSString* stepParents() {
    const Walk walk = parents();
    ABRecord* record = take(walk);
    if (record == nil) {
        return @"END";
    }
    ++walk.index;
    return [record uniqueId];
}

// Fails the call, and returns false, when no group is open.
bool requireGroup() {
    if (!state.g_group) {
        setError(kInvalidCallOrder);
        return false;
    }
    return true;
}

// Fails the call, and returns false, when the walk has not been begun.
bool requireList(const Walk& walk) {
    if (!walk.list) {
        setError(kInvalidCallOrder);
        return false;
    }
    return true;
}

} // namespace

NSString* firstParentId() {
    if (!requireActiveRecord()) {
        return nil;
    }
    const Walk walk = parents();
    walk.list.reset();
    walk.list = Retained<NSArray>::retain(parentGroupsOfCurrentRecord());
    if (!walk.list) {
        // No current person. The index and the current element stay.
        return @"END";
    }
    walk.index = 0;
    return stepParents();
}

NSString* nextParentId() {
    if (!requireActiveRecord() || !requireList(parents())) {
        return nil;
    }
    return stepParents();
}

NSString* firstMemberId() {
    if (!requireGroup()) {
        return nil;
    }
    const Walk walk = members();
    walk.index = 0;
    walk.list.reset();
    walk.list = Retained<NSArray>::retain([state.g_group.get() members]);
    return step(walk);
}

NSString* nextMemberId() {
    if (!requireGroup() || !requireList(members())) {
        return nil;
    }
    return step(members());
}

NSString* firstSubgroupId() {
    if (!requireGroup()) {
        return nil;
    }
    const Walk walk = subgroups();
    walk.list.reset();
    walk.list = Retained<NSArray>::retain([state.g_group.get() subgroups]);
    // Set after the list, unlike in firstMemberId(): when listing raises, the old index stays.
    walk.index = 0;
    return step(walk);
}

NSString* nextSubgroupId() {
    const Walk walk = subgroups();
    if (!requireActiveRecord() || !requireList(walk)) {
        return nil;
    }
    if (walk.index < [walk.list.get() count]) {
        return @"END";
    }
    walk.current.reset();
    return [[walk.list.get() objectAtIndex:walk.index] uniqueId]; // raises
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetFirstParentID(short function, const fmx::ExprEnv& /*env*/,
                                      const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 0);
        return firstParentId();
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_GetNextParentID(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return nextParentId(); });
}

fmx::errcode Do_KORU_GetFirstMemberID(short function, const fmx::ExprEnv& /*env*/,
                                      const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return firstMemberId(); });
}

fmx::errcode Do_KORU_GetNextMemberID(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return nextMemberId(); });
}

fmx::errcode Do_KORU_GetFirstSubgroupID(short function, const fmx::ExprEnv& /*env*/,
                                        const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return firstSubgroupId(); });
}

fmx::errcode Do_KORU_GetNextSubgroupID(short function, const fmx::ExprEnv& /*env*/,
                                       const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return nextSubgroupId(); });
}
