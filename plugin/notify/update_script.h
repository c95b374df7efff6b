#pragma once

#import "plugin/notify/notification_listener.h"
#include "plugin/support/retained.h"

namespace koru {

// Lets the listener start a script whenever another process has changed the address book; the arguments are
// its file and its name, which may be empty. Each call adds one start for each change, all of the script
// named last; there is no way to take one back. The environment is the calculation's; the locale is its
// result's. Returns "0", or nil when it fails the call with kRecordReadOnly: the current record must not be a
// read-only one.
[[nodiscard]] NSString* registerUpdateScript(const fmx::ExprEnv& environment, const fmx::DataVect& arguments,
                                             const fmx::Data& result);

} // namespace koru

// The plug-in's one listener; empty until a script is registered. Never released.
extern koru::Retained<KORUXNotificationListener>& listner;
