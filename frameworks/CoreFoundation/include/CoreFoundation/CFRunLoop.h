#pragma once

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFString.h>

// The loop in which a thread waits for events and handles them: that of the main thread, for instance,
// delivers pictures that were loaded in the background.
typedef struct __CFRunLoop* CFRunLoopRef;
typedef CFStringRef CFRunLoopMode;

typedef SInt32 CFRunLoopRunResult;
enum {
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4
};

CF_EXPORT const CFRunLoopMode kCFRunLoopDefaultMode;
#ifndef __OBJC__
CF_EXPORT const CFRunLoopMode kCFRunLoopCommonModes; // in Objective-C, Foundation's NSString
#endif

CF_EXPORT CFRunLoopRef CFRunLoopGetCurrent(void);
CF_EXPORT CFRunLoopRef CFRunLoopGetMain(void);

// Runs this thread's loop in its default mode until it is stopped.
CF_EXPORT void CFRunLoopRun(void);

// Runs this thread's loop in a mode for at most [seconds], or until it is stopped, or, if the last argument
// is true, until it has handled something. With 0 seconds it handles what is pending and does not wait.
CF_EXPORT CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                                Boolean returnAfterSourceHandled);

// Makes the innermost of the above calls return. May be called by a callback of the loop, or by another
// thread, whose call takes effect after the next event.
CF_EXPORT void CFRunLoopStop(CFRunLoopRef loop);
