#pragma once

#import "plugin/notify/notification_listener.h"
#include "plugin/support/retained.h"

namespace koru {

// Registers a script to be started whenever another process has changed the address book. The arguments are
// the script's file and name, either of which may be empty. Each call adds one start for each change: after n
// calls the script registered last is started n times. A registration cannot be undone. The locale of
// [result] becomes that of the script's parameter. Returns "0", or nil when it fails the call with
// kRecordReadOnly because the current record is read-only.
[[nodiscard]] NSString* registerUpdateScript(const fmx::ExprEnv& environment, const fmx::DataVect& arguments,
                                             const fmx::Data& result);

} // namespace koru

// The plug-in's one listener; empty until a script is registered. Never released.
extern koru::Retained<KORUXNotificationListener>& listner;
