#import "plugin/records/cursor.h"

#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#import "plugin/records/shared_book.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// Returns the cursor of the current record type.
std::uint32_t& currentIndex() {
    return state.g_currentRecordType == kGroupType ? state.gCurrentGroupIndex : state.gCurrentPersonIndex;
}

// Makes the record at the index of one type's results the current one of that type.
template <typename Record>
NSString* openAt(std::uint32_t index, const Retained<NSArray>& results, Retained<Record>& current) {
    current.reset();
    if (!results) {
        setError(kInvalidCallOrder);
        return nil;
    }
    if (index >= [results.get() count]) {
        return @"END";
    }
    current = Retained<Record>::retain([results.get() objectAtIndex:index]);
    return [current.get() uniqueId];
}

// Makes the record with the id the current one of its type.
template <typename Record>
NSString* openById(NSString* uniqueId, std::uint32_t type, Retained<Record>& current) {
    current.reset();
    current = Retained<Record>::retain(static_cast<Record*>(recordWithId(uniqueId)));
    state.g_currentRecordType = type;
    state.g_lastSearchType = type;
    if (!current) {
        setError(kRecordDoesNotExist);
        return nil;
    }
    return @"0";
}

} // namespace

NSString* openFirstRecord() {
    currentIndex() = 0;
    state.gCurrentProperty.reset();
    return OpenRecordAtGlobalIndex();
}

NSString* openNextRecord() {
    ++currentIndex();
    state.gCurrentProperty.reset();
    return OpenRecordAtGlobalIndex();
}

NSString* openRecord(NSString* uniqueId) {
    state.gCurrentProperty.reset();
    return isPersonId(uniqueId) ? openById(uniqueId, kPersonType, state.g_person)
                                : openById(uniqueId, kGroupType, state.g_group);
}

} // namespace koru

using namespace koru;

NSString* OpenRecordAtGlobalIndex() {
    NSString* answer = nil;
    guardedCall([&] {
        answer = state.g_currentRecordType == kGroupType
                     ? openAt(state.gCurrentGroupIndex, state.g_groupSearchResults, state.g_group)
                     : openAt(state.gCurrentPersonIndex, state.g_personSearchResults, state.g_person);
    });
    return answer;
}

fmx::errcode Do_KORU_OpenFirstRecord(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 0);
        return openFirstRecord();
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_OpenNextRecord(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 0);
        // Only in this function, and only without any argument: continues the walk of the last search.
        if (arguments.Size() == 0) {
            state.g_currentRecordType = state.g_lastSearchType;
        }
        return openNextRecord();
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_Open(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                          fmx::Data& result) {
    const auto work = [&]() -> Answer { return openRecord(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}
