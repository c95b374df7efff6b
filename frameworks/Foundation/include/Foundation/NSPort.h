#pragma once

// Foundation's ports, and what Foundation lacks of them here: NSMachPort, by which one thread wakes the run
// loop of another. It stands where macOS has it, so that <Foundation/Foundation.h> is all that a source
// imports.

#include_next <Foundation/NSPort.h>

@class NSRunLoop, NSString;

#ifdef __cplusplus
extern "C" {
#endif

// The mode that stands for all common modes: the default mode, a modal panel's and that of tracking events.
// On macOS it is a CFStringRef of the same name: write (NSString*)kCFRunLoopCommonModes and both compile. Of
// ports only Mach ports understand it, also by its name NSRunLoopCommonModes.
extern NSString* const kCFRunLoopCommonModes;

#ifdef __cplusplus
}
#endif

// What a Mach port sends its delegate. [message] is the message's header on macOS and NULL here.
@protocol NSMachPortDelegate <NSObject>
- (void)handleMachMessage:(void*)message;
@end

// A port for empty messages. Any thread that holds it may send them with
// -sendBeforeDate:components:from:reserved:, and each reaches the delegate once, on the thread whose run loop
// has the port. Sending never waits, whatever the date is: messages that wait are counted, and the count does
// not fill up. It answers NO when the port is invalid or when there are components, which have no way to
// travel.
//
// A run loop keeps a port that is added to it until the port is removed or invalidated, or its thread ends.
// The delegate, as everywhere, is not retained.
@interface NSMachPort : NSPort {
  @private
    int _event;
    int _closed;
}

// nil when the process can open no more files.
- (id)init;

// What -[NSRunLoop addPort:forMode:] and -[NSRunLoop removePort:forMode:] do; adding twice is adding once.
// Only the run loop's own thread may ask for it; from another an NSInvalidArgumentException is raised.
- (void)scheduleInRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode;
- (void)removeFromRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode;

// No message arrives any more, pending ones included. Any thread may do it; a run loop of another thread lets
// go of the port when it turns next.
- (void)invalidate;

@end
