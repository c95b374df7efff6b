#pragma once

// Support for the tests of Mach ports: a port for this thread's run loop, and a delegate that counts
// messages.

#include "tests/support/raised.h"

#import <Foundation/Foundation.h>
#include <functional>
#include <gtest/gtest.h>

// Returns the mode that the plug-in uses, written as in its sources.
inline NSString* commonModes() {
    return (NSString*)kCFRunLoopCommonModes;
}

// A delegate that counts its messages. Used only by the thread that handles them.
@interface CountingDelegate : NSObject <NSMachPortDelegate> {
  @public
    int messages;
    bool onOtherThread;
    bool withHeader;
    NSThread* thread;
    void* then; // a std::function<void()>, which has no Objective-C encoding; set by onEachMessage
}
@end

// Makes [delegate] call [work] for each message, or nothing for nullptr. The caller keeps [work] alive.
inline void onEachMessage(CountingDelegate* delegate, std::function<void()>* work) {
    delegate->then = work;
}

// A port that notes its deallocation.
@interface ProbePort : NSMachPort {
  @public
    bool* gone;
}
@end

// A test with a port and its delegate. The port is in no run loop at first, and is invalidated at the end.
class PortTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static NSRunLoop* loop() { return [NSRunLoop currentRunLoop]; }
    // Sends an empty message without waiting, as the plug-in does.
    static BOOL send(NSMachPort* port);
    BOOL send() { return send(port_); }
    // Runs the run loop in [mode] until [done] returns true, at most ten seconds.
    static void runUntil(const std::function<bool()>& done, NSString* mode = NSDefaultRunLoopMode);
    // Expects exactly [count] messages: runs the loop until the delegate has them, and a little longer.
    void expectMessages(int count, NSString* mode = NSDefaultRunLoopMode);

    NSAutoreleasePool* pool_ = nil;
    NSMachPort* port_ = nil;
    CountingDelegate* delegate_ = nil;
};
