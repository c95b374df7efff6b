#import "plugin/records/reload.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#include <cstdlib>

namespace koru {
namespace {

void clearState() {
    state.g_person.reset();
    state.g_group.reset();
    state.g_searchelement.reset();
    state.g_personSearchResults.reset();
    state.g_groupSearchResults.reset();
    state.gParentGroups.reset();
    state.gCurrentGroupParentID.reset();
    state.gValues.reset();
    state.gGroupMembers.reset();
    state.gCurrentMember.reset();
    state.gGroupSubgroups.reset();
    state.gCurrentSubgroup.reset();
    state.gCurrentProperty.reset();
}

[[noreturn]] void abortWith(NSString* reason) {
    NSLog(@"%@\nAborting.", reason);
    std::exit(EXIT_FAILURE);
}

} // namespace

NSString* reload() {
    clearState();
    if (![state.g_abframework unload]) {
        abortWith(@"Error, framework failed to unload");
    }
    // Released although it was never retained, on purpose.
    [state.g_abframework release];
    state.g_abframework = [NSBundle bundleWithIdentifier:@"com.apple.AddressBook.framework"];
    NSLog(@"Framework unloaded");
    if (![state.g_abframework load]) {
        abortWith(@"Error, framework failed to load");
    }
    NSLog(@"Framework loaded");
    return @"0";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_Reload(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                            fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return reload(); });
}
