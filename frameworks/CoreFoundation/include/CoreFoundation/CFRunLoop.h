#pragma once

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFString.h>

// The loop in which a thread waits for what there is to do: in the main thread's, for instance, pictures that
// were asked for are handed over.
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

// Runs it in a mode for so many seconds at most, or until it is stopped or, with the last argument, until it
// has done something. With 0 seconds it does what there is to do and does not wait.
CF_EXPORT CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                                Boolean returnAfterSourceHandled);

// Makes the innermost of the above return. Called by what the loop runs, or by another thread, whose call is
// noticed with the next thing that the loop does.
CF_EXPORT void CFRunLoopStop(CFRunLoopRef loop);
