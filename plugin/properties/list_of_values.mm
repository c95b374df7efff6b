#import "plugin/properties/list_of_values.h"

#import "plugin/groups/parent_groups.h"
#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

bool isWord(NSString* text, NSString* word) {
    return text != nil && [text caseInsensitiveCompare:word] == NSOrderedSame;
}

// Returns the parts of the person's name, each but the suffix followed by a blank: without a suffix the name
// ends in a blank, on purpose.
NSString* fullName(ABRecord* person) {
    NSString* const parts[] = {kABTitleProperty, kABFirstNameProperty, kABMiddleNameProperty,
                               kABLastNameProperty};
    NSMutableString* name = [NSMutableString string];
    for (NSString* part : parts) {
        if (NSString* text = [person valueForProperty:part]; text != nil) {
            [name appendFormat:@"%@ ", text];
        }
    }
    if (NSString* suffix = [person valueForProperty:kABSuffixProperty]; suffix != nil) {
        [name appendString:suffix];
    }
    return name;
}

NSString* groupName(ABRecord* group) {
    NSString* name = [group valueForProperty:kABGroupNameProperty];
    return name != nil ? name : @"";
}

} // namespace

NSString* listOfValues(NSString* what, NSString* field) {
    if (what == nil && field == nil) {
        setError(kInvalidParameterCount);
        return nil;
    }
    const bool members = isWord(what, @"members");
    const bool byId = isWord(field, @"UID");
    if ((!members && !isWord(what, @"groups")) || (!byId && !isWord(field, @"name")) ||
        (members && state.g_currentRecordType == kPersonType)) {
        setError(kInvalidParameterValue);
        return nil;
    }
    NSArray* records = members ? [state.g_group.get() members] : parentGroupsOfCurrentRecord();
    NSMutableArray* items = [NSMutableArray arrayWithCapacity:[records count]];
    for (NSUInteger i = 0; i < [records count]; ++i) {
        ABRecord* record = [records objectAtIndex:i];
        [items addObject:byId ? [record uniqueId] : members ? fullName(record) : groupName(record)];
    }
    return [items componentsJoinedByString:@"\r"];
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetListOfValues(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 0);
        return listOfValues(textArgument(arguments, 1), textArgument(arguments, 2));
    };
    return runHandler(function, arguments, result, work);
}
