#pragma once

#include "plugin/support/host_interface.h"
#include "plugin/support/placed.h"
#import <Foundation/Foundation.h>

// Starts a script of the host whenever another process has changed the address book. Notifications may arrive
// on any thread, but the host is called only on the owning thread, the one that first called
// setUpThreadingSupport: other threads queue their notifications and wake its run loop through a port. There
// is one listener for the life of the plug-in (update_script.h).
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

    // The environment of the calculation that registered the script last. Nothing uses it.
    const fmx::ExprEnv* environment;

    // The file and the script to start.
    koru::Placed<koru::OwnedText> theDB;
    koru::Placed<koru::OwnedText> theScript;

    // Nothing uses it.
    koru::Placed<koru::OwnedText> theParam;

    // The locale of the script's parameter, and the parameter as the host's value.
    koru::Placed<koru::OwnedLocale> locale;
    koru::Placed<koru::OwnedData> data;

    // The host's error code for the last start of the script. Nothing reads it.
    std::int16_t err;
}

// Makes a listener without a script. A failure of the host leaves it as std::bad_alloc or std::exception.
- (id)init;

// Makes the queue and the port, and the current thread the owning one. Does nothing when called again.
- (void)setUpThreadingSupport;

// Handles a message on the port: processes the queued notifications, also those added meanwhile.
- (void)handleMachMessage:(void*)message;

// On the owning thread, starts the script with the parameter "New <id>", else "Updated <id>", else "Deleted
// <id>", with the first identifier of that kind; on any other thread, queues the notification. A notification
// that names no record raises an NSException, on purpose.
- (void)processNotification:(NSNotification*)notification;

@end
