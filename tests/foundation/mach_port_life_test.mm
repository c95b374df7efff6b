// The lifetime of a port, and its state after it is invalidated.

#include "tests/foundation/support.h"

#include <chrono>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

// Counts the notifications it gets.
@interface NotificationCounter : NSObject {
  @public
    int count;
}
- (void)note:(NSNotification*)notification;
@end

@implementation NotificationCounter

- (void)note:(NSNotification*)GS_UNUSED_ARG notification {
    ++count;
}

@end

namespace {

// A mode without timers: run loops of this name have nothing but ports.
NSString* const kPortsOnly = @"Ports only";

TEST_F(PortTest, AnInvalidPortDeliversNothingAndTakesNothing) {
    NotificationCounter* counter = [[[NotificationCounter alloc] init] autorelease];
    [[NSNotificationCenter defaultCenter] addObserver:counter
                                             selector:@selector(note:)
                                                 name:NSPortDidBecomeInvalidNotification
                                               object:port_];
    [loop() addPort:port_ forMode:kPortsOnly];
    EXPECT_TRUE(send());
    [port_ invalidate];
    [port_ invalidate];
    EXPECT_FALSE([port_ isValid]);
    EXPECT_FALSE(send());
    EXPECT_FALSE([loop() runMode:kPortsOnly beforeDate:[NSDate date]]);
    [loop() addPort:port_ forMode:kPortsOnly];
    EXPECT_FALSE([loop() runMode:kPortsOnly beforeDate:[NSDate date]]);
    EXPECT_EQ(delegate_->messages, 0);
    EXPECT_EQ(counter->count, 1);
    [[NSNotificationCenter defaultCenter] removeObserver:counter];
}

TEST_F(PortTest, ADelegateMayInvalidateItsPort) {
    [loop() addPort:port_ forMode:kPortsOnly];
    std::function<void()> invalidate = [&] { [port_ invalidate]; };
    onEachMessage(delegate_, &invalidate);
    send();
    send();
    runUntil([&] { return delegate_->messages > 0; }, kPortsOnly);
    EXPECT_FALSE([loop() runMode:kPortsOnly beforeDate:[NSDate date]]);
    EXPECT_EQ(delegate_->messages, 1);
}

TEST_F(PortTest, TheLoopKeepsAPortUntilItIsRemoved) {
    bool gone = false;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    ProbePort* probe = [[ProbePort alloc] init];
    probe->gone = &gone;
    [probe setDelegate:delegate_];
    [loop() addPort:probe forMode:commonModes()];
    [loop() addPort:probe forMode:kPortsOnly];
    [probe release];
    EXPECT_FALSE(gone);
    send(probe);
    expectMessages(1, kPortsOnly);
    [loop() removePort:probe forMode:kPortsOnly];
    [loop() removePort:probe forMode:commonModes()];
    [pool release];
    EXPECT_TRUE(gone);
    EXPECT_FALSE([loop() runMode:kPortsOnly beforeDate:[NSDate date]]);
}

TEST_F(PortTest, ADelegateMayLetGoOfTheLastReference) {
    bool gone = false;
    ProbePort* probe = [[ProbePort alloc] init];
    probe->gone = &gone;
    [probe setDelegate:delegate_];
    [loop() addPort:probe forMode:kPortsOnly];
    std::function<void()> letGo = [&] {
        [loop() removePort:probe forMode:kPortsOnly];
        [probe release];
    };
    onEachMessage(delegate_, &letGo);
    send(probe);
    runUntil([&] { return delegate_->messages > 0; }, kPortsOnly);
    EXPECT_TRUE(gone);
}

TEST_F(PortTest, AnotherThreadMayInvalidateAndTheLoopLetsGo) {
    for (const int pending : {0, 2}) {
        bool gone = false;
        ProbePort* probe = [[ProbePort alloc] init];
        probe->gone = &gone;
        [probe setDelegate:delegate_];
        [loop() addPort:probe forMode:kPortsOnly];
        std::thread([=] {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            for (int message = 0; message < pending; ++message) {
                send(probe);
            }
            [probe invalidate];
            [probe release];
            [pool release];
        }).join();
        EXPECT_FALSE(gone);
        runUntil([&] { return gone; }, kPortsOnly);
        EXPECT_TRUE(gone);
        EXPECT_FALSE([loop() runMode:kPortsOnly beforeDate:[NSDate date]]);
        EXPECT_EQ(delegate_->messages, 0);
    }
}

TEST_F(PortTest, InvalidatingWhileOthersSendIsSafe) {
    for (int round = 0; round < 50; ++round) {
        NSMachPort* port = [[NSMachPort alloc] init];
        [port setDelegate:delegate_];
        [loop() addPort:port forMode:kPortsOnly];
        std::thread sender([port] {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            while (send(port)) {
                std::this_thread::yield();
            }
            [pool release];
        });
        const int before = delegate_->messages;
        runUntil([&] { return delegate_->messages > before; }, kPortsOnly);
        [port invalidate];
        sender.join();
        [port release];
    }
    EXPECT_GE(delegate_->messages, 50);
}

TEST_F(PortTest, AThreadThatEndsLetsGoOfItsPorts) {
    bool gone = false;
    std::thread([&] {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        CountingDelegate* delegate = [[[CountingDelegate alloc] init] autorelease];
        ProbePort* probe = [[ProbePort alloc] init];
        probe->gone = &gone;
        [probe setDelegate:delegate];
        [loop() addPort:probe forMode:commonModes()];
        send(probe);
        runUntil([&] { return delegate->messages > 0; });
        EXPECT_EQ(delegate->messages, 1);
        [probe release];
        [pool release];
    }).join();
    EXPECT_TRUE(gone);
}

TEST_F(PortTest, IsNilWhenNoMoreFilesCanBeOpened) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    NSMachPort* port = [[NSMachPort alloc] init];
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(port, nil);
}

TEST_F(PortTest, LeavesNoFileOpen) {
    const int next = ::dup(0);
    ::close(next);
    for (int i = 0; i < 100; ++i) {
        NSMachPort* port = [[NSMachPort alloc] init];
        [loop() addPort:port forMode:kPortsOnly];
        [loop() removePort:port forMode:kPortsOnly];
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [port release];
        [pool release];
    }
    [pool_ release];
    pool_ = [[NSAutoreleasePool alloc] init];
    const int after = ::dup(0);
    ::close(after);
    EXPECT_EQ(after, next);
}

} // namespace
