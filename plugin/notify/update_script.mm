#import "plugin/notify/update_script.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#include "plugin/support/immortal.h"

namespace koru {
namespace {
constinit Immortal<Retained<KORUXNotificationListener>> storage;
}

NSString* registerUpdateScript(const fmx::ExprEnv& environment, const fmx::DataVect& arguments,
                               const fmx::Data& result) {
    // The check of the functions that change a record, although this one changes none.
    if (!requireWritableRecord()) {
        return nil;
    }
    if (!listner) {
        listner = Retained<KORUXNotificationListener>::adopt([[KORUXNotificationListener alloc] init]);
    }
    KORUXNotificationListener* listener = listner.get();
    listener->environment = &environment;
    [listener setUpThreadingSupport];
    // Added again by every call: n registrations start the script n times.
    [[NSNotificationCenter defaultCenter] addObserver:listener
                                             selector:@selector(processNotification:)
                                                 name:kABDatabaseChangedExternallyNotification
                                               object:nil];
    [[NSDistributedNotificationCenter defaultCenter] setSuspended:NO];
    [ABAddressBook sharedAddressBook]; // changes are told from the first call on
    *listener->locale = result.GetLocale();
    listener->theDB->SetText(arguments.AtAsText(0), 0, fmx::Text::kSize_End);
    listener->theScript->SetText(arguments.AtAsText(1), 0, fmx::Text::kSize_End);
    return @"0";
}

} // namespace koru

using namespace koru;

constinit koru::Retained<KORUXNotificationListener>& listner = storage.value;

fmx::errcode Do_KORU_RegisterUpdateScript(short function, const fmx::ExprEnv& env,
                                          const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer { return registerUpdateScript(env, arguments, result); };
    return runHandler(function, arguments, result, work);
}
