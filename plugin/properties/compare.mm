#import "plugin/properties/compare.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#import "plugin/vocabulary/value_format.h"

namespace koru {
namespace {

bool equalsDate(NSDate* date, NSString* text) {
    NSDate* named = [NSDate dateWithNaturalLanguageString:text];
    return named != nil && [date isEqualToDate:named];
}

} // namespace

NSString* compareProperty(NSString* name, NSString* text, NSString* identifier, NSString* key) {
    if (!requireActiveRecord()) {
        return nil;
    }
    id value = GetPropertyValue(name, identifier, key, 0);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    if (value == nil || text == nil) {
        return value == nil && text == nil ? @"0" : @"-1";
    }
    const ABPropertyType type = typeOfCurrentProperty(state.gCurrentProperty.get());
    const bool equal = (type | kABMultiValueMask) == kABMultiDateProperty
                           ? equalsDate(value, text)
                           : [text compare:value] == NSOrderedSame;
    return equal ? @"0" : @"-1";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_CompareProperty(short function, const fmx::ExprEnv& /*env*/,
                                     const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return compareProperty(textArgument(arguments, 0), textArgument(arguments, 1),
                               textArgument(arguments, 2), textArgument(arguments, 3));
    };
    return runHandler(function, arguments, result, work);
}
