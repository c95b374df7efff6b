#import "plugin/properties/multi_value_cursor.h"

#import "plugin/properties/entries.h"
#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {

NSString* openFirstEntry(NSString* name) {
    if (!requireActiveRecord() || !openEntries(name, @"Property may be a single-value property.")) {
        return nil;
    }
    if (!state.gValues) {
        return @"END";
    }
    state.gCurrentValuesIndex = 1;
    return [state.gValues.get() identifierAtIndex:0];
}

NSString* openNextEntry() {
    if (!state.gCurrentProperty) {
        setError(kInvalidCallOrder);
        return nil;
    }
    // On purpose: when another property has been opened meanwhile, the index of the earlier walk goes on.
    if (!state.gValues || state.gCurrentValuesIndex >= [state.gValues.get() count]) {
        return @"END";
    }
    NSString* identifier = [state.gValues.get() identifierAtIndex:state.gCurrentValuesIndex];
    ++state.gCurrentValuesIndex;
    return identifier;
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_OpenFirstMVProperty(short function, const fmx::ExprEnv& /*env*/,
                                         const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 1);
        return openFirstEntry(textArgument(arguments, 0));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_OpenNextMVProperty(short function, const fmx::ExprEnv& /*env*/,
                                        const fmx::DataVect& arguments, fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return openNextEntry(); });
}
