#import "plugin/properties/list_of_values.h"

#import "plugin/groups/parent_groups.h"
#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#include "plugin/shell/handlers.h"
#include <algorithm>

namespace koru {
namespace {

bool isWord(NSString* text, NSString* word) {
    return text != nil && [text caseInsensitiveCompare:word] == NSOrderedSame;
}

// The records after which a long list drains what reading them has left in the pool.
constexpr NSUInteger kRecordsInAPool = 256;

// Appends the parts of the person's name, each but the suffix followed by a blank: without a suffix the name
// ends in a blank, on purpose.
void appendFullName(JoinedText& list, ABRecord* person) {
    NSString* const parts[] = {kABTitleProperty, kABFirstNameProperty, kABMiddleNameProperty,
                               kABLastNameProperty};
    for (NSString* part : parts) {
        if (NSString* text = [person valueForProperty:part]; text != nil) {
            list.append(text);
            list.append(' ');
        }
    }
    list.append([person valueForProperty:kABSuffixProperty]);
}

} // namespace

Answer listOfValues(NSString* what, NSString* field, fmx::Data& result) {
    if (what == nil && field == nil) {
        setError(kInvalidParameterCount);
        return {};
    }
    const bool members = isWord(what, @"members");
    const bool byId = isWord(field, @"UID");
    if ((!members && !isWord(what, @"groups")) || (!byId && !isWord(field, @"name")) ||
        (members && state.g_currentRecordType == kPersonType)) {
        setError(kInvalidParameterValue);
        return {};
    }
    NSArray* records = members ? [state.g_group.get() members] : parentGroupsOfCurrentRecord();
    JoinedText list;
    for (NSUInteger i = 0, count = [records count]; i < count;) {
        // When an exception passes, the pool of the call drains this one, and no earlier: the exception lives.
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        for (const NSUInteger end = std::min(count, i + kRecordsInAPool); i < end; ++i) {
            ABRecord* record = [records objectAtIndex:i];
            if (i != 0) {
                list.append('\r');
            }
            if (byId) {
                list.append([record uniqueId]);
            } else if (members) {
                appendFullName(list, record);
            } else {
                list.append([record valueForProperty:kABGroupNameProperty]);
            }
        }
        [pool release];
    }
    OwnedText text;
    list.assignTo(*text);
    result.SetAsText(*text, result.GetLocale(), fmx::Data::kDTText);
    return Answer::written();
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetListOfValues(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 0);
        return listOfValues(textArgument(arguments, 1), textArgument(arguments, 2), result);
    };
    return runHandler(function, arguments, result, work);
}
