#pragma once

// What the tests of Foundation's additions share: a Mach port on this thread's run loop and a delegate that
// counts.

#include "tests/support/raised.h"

#import <Foundation/Foundation.h>
#include <functional>
#include <gtest/gtest.h>

// The mode that the plug-in's sources name, written as they write it.
inline NSString* commonModes() {
    return (NSString*)kCFRunLoopCommonModes;
}

// Counts its messages; all of it belongs to the thread that handles them.
@interface CountingDelegate : NSObject <NSMachPortDelegate> {
  @public
    int messages;
    bool onOtherThread;
    bool withHeader;
    NSThread* thread;
    void* then; // a std::function<void()>, which has no Objective-C encoding; set by onEachMessage
}
@end

// Lets [delegate] call [work] for each message; the work stays the caller's. nullptr for no more.
inline void onEachMessage(CountingDelegate* delegate, std::function<void()>* work) {
    delegate->then = work;
}

// A port that says when it is gone.
@interface ProbePort : NSMachPort {
  @public
    bool* gone;
}
@end

// A pool around each test, a port with its delegate that is in no run loop yet, invalidated at the end.
class PortTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static NSRunLoop* loop() { return [NSRunLoop currentRunLoop]; }
    // An empty message that is not waited for, as the plug-in sends it.
    static BOOL send(NSMachPort* port);
    BOOL send() { return send(port_); }
    // Lets the run loop turn in [mode] until [done] or ten seconds are over.
    static void runUntil(const std::function<bool()>& done, NSString* mode = NSDefaultRunLoopMode);
    // Lets it turn until the delegate has had [count] messages, and then a little longer for those too many.
    void expectMessages(int count, NSString* mode = NSDefaultRunLoopMode);

    NSAutoreleasePool* pool_ = nil;
    NSMachPort* port_ = nil;
    CountingDelegate* delegate_ = nil;
};
