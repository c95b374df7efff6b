#import "plugin/groups/membership.h"

#import "plugin/records/plugin_state.h"
#import "plugin/records/shared_book.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// Returns the record with the identifier, once the current group may be changed; nil when it fails the call.
ABRecord* recordToJoin(NSString* uniqueId) {
    if (!requireWritableRecord()) {
        return nil;
    }
    if (!state.g_group) {
        setError(kInvalidCallOrder);
        return nil;
    }
    // Looked at besides the current record, which need not be the group.
    if ([state.g_group.get() isReadOnly]) {
        setError(kRecordReadOnly);
        return nil;
    }
    ABRecord* record = recordWithId(uniqueId);
    if (record == nil) {
        setError(kUidDoesNotExist);
    }
    return record;
}

// Returns the group with the identifier, once the current group may be changed; nil when it fails the call.
ABGroup* groupToJoin(NSString* uniqueId) {
    ABRecord* record = recordToJoin(uniqueId);
    if (record != nil && ![record isKindOfClass:[ABGroup class]]) {
        setError(kInvalidRecordType);
        return nil;
    }
    return static_cast<ABGroup*>(record);
}

// Returns the result of a call that did not fail. What the address book itself refuses counts as done.
NSString* done() {
    return errors.g_llasterror == kSuccess ? @"0" : nil;
}

} // namespace

NSString* addPerson(NSString* uniqueId) {
    if (!requireActiveRecord()) {
        return nil;
    }
    // Not checked to be a person, here and in removePerson(): the framework decides.
    if (ABRecord* record = recordToJoin(uniqueId); record != nil) {
        [state.g_group.get() addMember:static_cast<ABPerson*>(record)];
    }
    return done();
}

NSString* removePerson(NSString* uniqueId) {
    if (ABRecord* record = recordToJoin(uniqueId); record != nil) {
        [state.g_group.get() removeMember:static_cast<ABPerson*>(record)];
    }
    return done();
}

NSString* addSubgroup(NSString* uniqueId) {
    if (ABGroup* group = groupToJoin(uniqueId); group != nil) {
        [state.g_group.get() addSubgroup:group];
    }
    return done();
}

NSString* removeSubgroup(NSString* uniqueId) {
    if (ABGroup* group = groupToJoin(uniqueId); group != nil) {
        [state.g_group.get() removeSubgroup:group];
    }
    return done();
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_AddPerson(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                               fmx::Data& result) {
    const auto work = [&]() -> Answer { return addPerson(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_RemovePerson(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                                  fmx::Data& result) {
    const auto work = [&]() -> Answer { return removePerson(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_AddSubgroup(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                                 fmx::Data& result) {
    const auto work = [&]() -> Answer { return addSubgroup(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_RemoveSubgroup(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer { return removeSubgroup(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}
