#pragma once

#include "plugin/support/host_interface.h"
#include "plugin/support/placed.h"
#import <Foundation/Foundation.h>

// Starts a script of the host whenever another process has changed the address book. The notification may
// come on any thread; the host is called on one only, the one that first ran setUpThreadingSupport: others
// queue their notifications and wake that thread's run loop through a port. There is one listener for the
// life of the plug-in (update_script.h).
@interface KORUXNotificationListener : NSObject <NSMachPortDelegate> {
  @public
    // Waiting for the owning thread, first in, first out.
    NSMutableArray* notifications;

    // The owning thread.
    NSThread* notificationThread;

    // Guards the queue alone; never held while a script is started.
    NSLock* notificationLock;

    // Scheduled on the owning thread's run loop. A message on it says that the queue is not empty.
    NSMachPort* notificationPort;

    // Nothing uses it.
    NSString* scriptName;

    // The calculation that named the script last; kept, not used.
    const fmx::ExprEnv* environment;

    // The file and the script to start.
    koru::Placed<koru::OwnedText> theDB;
    koru::Placed<koru::OwnedText> theScript;

    // Nothing uses it.
    koru::Placed<koru::OwnedText> theParam;

    // The locale in which the parameter becomes the host's, and that parameter.
    koru::Placed<koru::OwnedLocale> locale;
    koru::Placed<koru::OwnedData> data;

    // The host's error code of the last start; nothing reads it.
    std::int16_t err;
}

// Makes a listener for no script yet. A failure of the host's passes as std::bad_alloc or std::exception.
- (id)init;

// Makes the queue and the port, and the current thread the owning one; only the first time.
- (void)setUpThreadingSupport;

// Handles a message on the port: processes what is queued, and what is added meanwhile.
- (void)handleMachMessage:(void*)message;

// On the owning thread starts the script with "New ", "Updated " or "Deleted " and the first such identifier,
// whichever comes first in this order; on any other thread queues the notification. One that names no record
// is not guarded against: it leaves as a platform exception, on purpose.
- (void)processNotification:(NSNotification*)notification;

@end
