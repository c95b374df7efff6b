#pragma once

#import "plugin/notify/notification_listener.h"
#include "plugin/support/retained.h"

// The plug-in's one listener; empty until a script is registered. Never released.
extern Retained<KORUXNotificationListener>& listner;

// Lets the listener start a script of a file (both may be empty) whenever another process has changed the
// address book. Each call adds one start for each change, all of the script named last; there is no way to
// take one back. The environment and the locale are the calculation's. "0", or nil when it failed the call
// with kRecordReadOnly: the current record must not be a read-only one.
[[nodiscard]] NSString* registerUpdateScript(const fmx::Text& file, const fmx::Text& script,
                                             const fmx::ExprEnv& environment, const fmx::Locale& locale);
