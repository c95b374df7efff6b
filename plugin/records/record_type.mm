#import "plugin/records/record_type.h"

#import "plugin/records/plugin_state.h"
#import "plugin/support/host_text.h"

using namespace koru;

void SetType(const fmx::DataVect& arguments, fmx::uint32 position) {
    NSString* word = [textArgument(arguments, position) lowercaseString];
    if (word == nil) {
        // A type that is neither persons nor groups counts as not set.
        if (state.g_currentRecordType > kGroupType) {
            state.g_currentRecordType = state.g_lastSearchType;
        }
    } else if ([word isEqualToString:@"person"] || [word isEqualToString:@"contact"]) {
        state.g_currentRecordType = kPersonType;
    } else if ([word isEqualToString:@"group"]) {
        state.g_currentRecordType = kGroupType;
    }
}
