// Messages of a port: the thread that gets them, their number, and the modes.

#include "tests/foundation/support.h"

#include <array>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

// Runs [work] in [threads] threads at once and waits for them.
void inThreads(int threads, const std::function<void(int)>& work) {
    std::vector<std::thread> all;
    for (int thread = 0; thread < threads; ++thread) {
        all.emplace_back([=] {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            work(thread);
            [pool release];
        });
    }
    for (std::thread& thread : all) {
        thread.join();
    }
}

TEST_F(PortTest, IsAPortThatSaysWhoItsDelegateIs) {
    EXPECT_TRUE([[NSMachPort port] isKindOfClass:[NSMachPort class]]);
    EXPECT_TRUE([port_ isKindOfClass:[NSPort class]]);
    EXPECT_TRUE([port_ isValid]);
    EXPECT_EQ([port_ delegate], delegate_);
    EXPECT_TRUE([commonModes() isKindOfClass:[NSString class]]);
}

TEST_F(PortTest, AForeignThreadsMessageReachesTheDelegateOnTheLoopsThread) {
    [loop() addPort:port_ forMode:commonModes()];
    inThreads(1, [&](int) { EXPECT_TRUE(send()); });
    EXPECT_EQ(delegate_->messages, 0);
    expectMessages(1);
}

TEST_F(PortTest, AMessageWakesALoopThatWaits) {
    [loop() addPort:port_ forMode:commonModes()];
    std::thread sender([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        send();
        [pool release];
    });
    NSDate* start = [NSDate date];
    [loop() runMode:NSDefaultRunLoopMode beforeDate:[NSDate dateWithTimeIntervalSinceNow:20]];
    sender.join();
    EXPECT_EQ(delegate_->messages, 1);
    EXPECT_LT(-[start timeIntervalSinceNow], 10);
}

TEST_F(PortTest, MessagesSentBeforeThePortIsInALoopWait) {
    EXPECT_TRUE(send());
    EXPECT_TRUE(send());
    [loop() addPort:port_ forMode:NSDefaultRunLoopMode];
    expectMessages(2);
}

TEST_F(PortTest, EachMessageOfABurstArrivesOnceWhileTheLoopRuns) {
    [loop() addPort:port_ forMode:commonModes()];
    std::thread senders([&] {
        inThreads(4, [&](int) {
            for (int message = 0; message < 1000; ++message) {
                EXPECT_TRUE(send());
            }
        });
    });
    expectMessages(4000);
    senders.join();
}

TEST_F(PortTest, ABurstToALoopThatDoesNotRunBlocksNobody) {
    [loop() addPort:port_ forMode:commonModes()];
    inThreads(4, [&](int) {
        for (int message = 0; message < 1000; ++message) {
            EXPECT_TRUE(send());
        }
    });
    EXPECT_EQ(delegate_->messages, 0);
    expectMessages(4000);
}

// How the port is meant to be used: a queue under a lock, drained by the delegate.
TEST_F(PortTest, AQueueBehindItIsDrainedInOrder) {
    [loop() addPort:port_ forMode:commonModes()];
    NSLock* lock = [[[NSLock alloc] init] autorelease];
    std::vector<std::pair<int, int>> queue;
    std::vector<std::pair<int, int>> seen;
    std::function<void()> drain = [&] {
        for (;;) {
            [lock lock];
            if (queue.empty()) {
                break;
            }
            seen.push_back(queue.front());
            queue.erase(queue.begin());
            [lock unlock];
        }
        [lock unlock];
    };
    onEachMessage(delegate_, &drain);
    std::thread senders([&] {
        inThreads(3, [&](int thread) {
            for (int number = 0; number < 1000; ++number) {
                [lock lock];
                queue.emplace_back(thread, number);
                [lock unlock];
                send();
            }
        });
    });
    runUntil([&] { return seen.size() == 3000; });
    senders.join();
    onEachMessage(delegate_, nullptr);
    ASSERT_EQ(seen.size(), 3000U);
    std::vector<int> next(3);
    for (const auto& [thread, number] : seen) {
        EXPECT_EQ(number, next[thread]++);
    }
}

TEST_F(PortTest, MessagesSentWhileOneIsHandledArriveAfterIt) {
    [loop() addPort:port_ forMode:commonModes()];
    int depth = 0;
    std::function<void()> sendMore = [&] {
        EXPECT_EQ(depth++, 0);
        if (delegate_->messages < 10) {
            send();
        }
        --depth;
    };
    onEachMessage(delegate_, &sendMore);
    send();
    expectMessages(10);
}

TEST_F(PortTest, ADelegateMayRunTheLoopItself) {
    [loop() addPort:port_ forMode:commonModes()];
    std::function<void()> nest = [&] {
        if (delegate_->messages == 1) {
            runUntil([&] { return delegate_->messages == 3; });
        }
    };
    onEachMessage(delegate_, &nest);
    send();
    send();
    send();
    expectMessages(3);
}

TEST_F(PortTest, AnExceptionOfTheDelegateComesOutOfTheLoopAndTheNextMessageArrives) {
    [loop() addPort:port_ forMode:commonModes()];
    std::function<void()> raise = [] { [NSException raise:NSGenericException format:@"of the delegate"]; };
    onEachMessage(delegate_, &raise);
    send();
    NSException* exception = raised([&] { expectMessages(1); });
    EXPECT_TRUE([[exception reason] isEqual:@"of the delegate"]);
    onEachMessage(delegate_, nullptr);
    send();
    expectMessages(2);
}

TEST_F(PortTest, WithoutADelegateMessagesGoNowhere) {
    [loop() addPort:port_ forMode:commonModes()];
    [port_ setDelegate:nil];
    EXPECT_TRUE(send());
    [loop() runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    [port_ setDelegate:delegate_];
    EXPECT_TRUE(send());
    expectMessages(1);
}

TEST_F(PortTest, ComponentsDoNotTravel) {
    [loop() addPort:port_ forMode:commonModes()];
    NSMutableArray* components = [NSMutableArray arrayWithObject:[NSData data]];
    EXPECT_FALSE([port_ sendBeforeDate:[NSDate date] components:components from:nil reserved:0]);
    EXPECT_TRUE([port_ sendBeforeDate:[NSDate date] components:[NSMutableArray array] from:nil reserved:0]);
    expectMessages(1);
}

TEST_F(PortTest, CommonModesAreTheDefaultModeAndThoseOfPanelsAndTracking) {
    const std::array<NSString*, 3> modes = {NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                                            @"NSEventTrackingRunLoopMode"};
    const std::array<NSString*, 2> names = {commonModes(), NSRunLoopCommonModes};
    for (NSString* common : names) {
        [loop() addPort:port_ forMode:common];
        int messages = delegate_->messages;
        for (NSString* mode : modes) {
            send();
            [loop() runMode:@"Another mode" beforeDate:[NSDate date]];
            EXPECT_EQ(delegate_->messages, messages);
            expectMessages(++messages, mode);
        }
        [loop() removePort:port_ forMode:common];
        send();
        for (NSString* mode : modes) {
            [loop() runMode:mode beforeDate:[NSDate date]];
        }
        EXPECT_EQ(delegate_->messages, messages);
        [loop() addPort:port_ forMode:common]; // the message has waited
        expectMessages(++messages);
        [loop() removePort:port_ forMode:common];
    }
}

TEST_F(PortTest, AModeOfItsOwnIsNotTheDefaultMode) {
    [loop() addPort:port_ forMode:@"Another mode"];
    send();
    [loop() runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    EXPECT_EQ(delegate_->messages, 0);
    expectMessages(1, @"Another mode");
}

TEST_F(PortTest, NoModeIsTheDefaultMode) {
    [loop() addPort:port_ forMode:nil];
    send();
    expectMessages(1);
}

TEST_F(PortTest, AddingTwiceIsAddingOnce) {
    [loop() addPort:port_ forMode:@"Another mode"];
    [port_ scheduleInRunLoop:loop() forMode:@"Another mode"];
    send();
    expectMessages(1, @"Another mode");
    [port_ removeFromRunLoop:loop() forMode:@"Another mode"];
    send();
    [loop() runMode:@"Another mode" beforeDate:[NSDate date]];
    EXPECT_EQ(delegate_->messages, 1);
    [loop() removePort:port_ forMode:@"Another mode"]; // not in: nothing happens
}

TEST_F(PortTest, AnotherThreadsLoopIsNotTouched) {
    NSRunLoop* main = loop();
    NSException* exception = nil;
    inThreads(1,
              [&](int) { exception = [raised([&] { [main addPort:port_ forMode:commonModes()]; }) retain]; });
    EXPECT_TRUE([[exception name] isEqual:NSInvalidArgumentException]);
    [exception release];
}

TEST_F(PortTest, TwoThreadsAnswerEachOther) {
    NSMachPort* there = nil;
    std::atomic<bool> ready = false;
    std::thread other([&] {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        CountingDelegate* echo = [[CountingDelegate alloc] init];
        std::function<void()> answer = [&] { send(); };
        onEachMessage(echo, &answer);
        there = [[NSMachPort alloc] init];
        [there setDelegate:echo];
        [loop() addPort:there forMode:commonModes()];
        ready = true;
        runUntil([&] { return echo->messages == 1000; });
        EXPECT_FALSE(echo->onOtherThread);
        [there invalidate];
        [echo release];
        [pool release];
    });
    while (!ready) {
        std::this_thread::yield();
    }
    [loop() addPort:port_ forMode:commonModes()];
    std::function<void()> again = [&] {
        if (delegate_->messages < 1000) {
            send(there);
        }
    };
    onEachMessage(delegate_, &again);
    send(there);
    expectMessages(1000);
    other.join();
    [there release];
}

TEST_F(PortTest, OtherPortsAreScheduledAsBefore) {
    NSPort* other = [NSPort port];
    [loop() addPort:other forMode:@"Another mode"];
    EXPECT_TRUE([loop() runMode:@"Another mode" beforeDate:[NSDate date]]);
    [loop() removePort:other forMode:@"Another mode"];
    EXPECT_FALSE([loop() runMode:@"Another mode" beforeDate:[NSDate date]]);
}

} // namespace
