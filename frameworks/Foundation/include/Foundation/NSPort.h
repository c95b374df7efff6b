#pragma once

// GNUstep's ports, and NSMachPort, which it lacks and by which a thread wakes the run loop of another one. It
// is in the header in which macOS has it, so that a source needs to import only <Foundation/Foundation.h>.

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

// Implemented by the delegate of a Mach port. [message] is the message's header on macOS, NULL here.
@protocol NSMachPortDelegate <NSObject>
- (void)handleMachMessage:(void*)message;
@end

// A port for empty messages. Any thread may send one with -sendBeforeDate:components:from:reserved:, and the
// delegate gets each message once, on the thread whose run loop has the port. Sending never blocks, whatever
// the date is, as pending messages are only counted. It returns NO when the port is invalid, or when there
// are components, which cannot be sent.
//
// A run loop retains its ports until they are removed or invalidated, or its thread ends. The delegate is not
// retained.
@interface NSMachPort : NSPort {
  @private
    int _event;
    int _closed;
}

// Returns nil when the process has no file descriptors left.
- (id)init;

// Do what -[NSRunLoop addPort:forMode:] and -[NSRunLoop removePort:forMode:] do; adding a port again has no
// effect. Raise an NSInvalidArgumentException on any thread but that of the run loop.
- (void)scheduleInRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode;
- (void)removeFromRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode;

// Ends the delivery of messages, also of pending ones. Thread-safe; the run loop of another thread releases
// the port in its next turn.
- (void)invalidate;

@end
