#include <CoreFoundation/CFRunLoop.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

const CFRunLoopMode kCFRunLoopDefaultMode = (CFRunLoopMode) @"NSDefaultRunLoopMode";

// The loops that CFRunLoopStop() was called for.
static NSMutableArray* stopping = nil;

// Returns whether a loop was told to stop, and clears that.
static BOOL takeStop(NSRunLoop* loop) {
    @synchronized([NSRunLoop class]) {
        const BOOL stopped = [stopping containsObject:loop];
        [stopping removeObjectIdenticalTo:loop];
        return stopped;
    }
}

CFRunLoopRef CFRunLoopGetCurrent(void) {
    CFRunLoopRef loop;
    IN_POOL(loop = (CFRunLoopRef)[NSRunLoop currentRunLoop]);
    return loop;
}

CFRunLoopRef CFRunLoopGetMain(void) {
    CFRunLoopRef loop;
    IN_POOL(loop = (CFRunLoopRef)[NSRunLoop mainRunLoop]);
    return loop;
}

void CFRunLoopStop(CFRunLoopRef loop) {
    @synchronized([NSRunLoop class]) {
        if (stopping == nil) {
            stopping = [[NSMutableArray alloc] init];
        }
        [stopping addObject:(NSRunLoop*)loop];
    }
}

// Runs one turn: the timers that are due, and then, unless one of them stopped the loop, the input that
// arrives before the next timer is due. Returns 0 to continue.
static CFRunLoopRunResult turn(NSRunLoop* loop, NSString* mode, NSDate* end, BOOL once) {
    NSDate* limit = [loop limitDateForMode:mode];
    if (takeStop(loop)) {
        return kCFRunLoopRunStopped;
    }
    if (limit == nil) {
        return kCFRunLoopRunFinished;
    }
    limit = [limit earlierDate:end];
    [loop acceptInputForMode:mode beforeDate:limit];
    if (takeStop(loop)) {
        return kCFRunLoopRunStopped;
    }
    if ([end timeIntervalSinceNow] <= 0) {
        return kCFRunLoopRunTimedOut;
    }
    return once && [limit timeIntervalSinceNow] > 0 ? kCFRunLoopRunHandledSource : 0;
}

static CFRunLoopRunResult run(NSString* mode, NSDate* end, BOOL once) {
    NSRunLoop* loop = [NSRunLoop currentRunLoop];
    CFRunLoopRunResult result = 0;
    takeStop(loop); // a stop while the loop did not run is ignored
    while (result == 0) {
        IN_POOL(result = turn(loop, mode, end, once));
    }
    return result;
}

void CFRunLoopRun(void) {
    IN_POOL(run(NSDefaultRunLoopMode, [NSDate distantFuture], NO));
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled) {
    CFRunLoopRunResult result;
    IN_POOL(result = run((NSString*)mode, [NSDate dateWithTimeIntervalSinceNow:seconds],
                         returnAfterSourceHandled));
    return result;
}
