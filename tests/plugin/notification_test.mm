#include "tests/plugin/notification_support.h"

#import "plugin/shell/error_state.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/thrown_object.h"

namespace {

// Runs the run loop until [count] scripts have been started, at most ten seconds.
void turnLoopUntilStarted(std::size_t count) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:10];
    while (starts.size() < count && [end timeIntervalSinceNow] > 0) {
        const Pool pool;
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }
}

TEST_F(NotificationTest, NothingIsObservedBeforeTheFirstRegistration) {
    EXPECT_FALSE(listner);
    post(changes(ids(@"a"), nil, nil));
    EXPECT_TRUE(starts.empty());
}

TEST_F(NotificationTest, AChangeOnTheOwningThreadStartsTheScriptAtOnce) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    post(changes(ids(@"1:ABPerson"), nil, nil));
    EXPECT_EQ(starts,
              (std::vector<Start>{{"Contacts", "Changed", 3, "New 1:ABPerson", std::this_thread::get_id()}}));
}

TEST_F(NotificationTest, OneRecordOfTheFirstKindIsReported) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    post(changes(ids(@"a", @"b"), nil, nil));
    post(changes(ids(@"c"), nil, ids(@"d")));
    post(changes(ids(@"e"), ids(@"f"), ids(@"g")));
    post(changes(nil, ids(@"h"), ids(@"i")));
    post(changes(nil, nil, ids(@"j", @"k")));
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New a", "New c", "New e", "Updated h", "Deleted j"}));
}

TEST_F(NotificationTest, AnyTextOfAnIdentifierArrives) {
    EXPECT_EQ(registerScript("Kontakte ä", "Geändert 🙂"), "0");
    post(changes(ids(@"ü🙂"), nil, nil));
    ASSERT_EQ(starts.size(), 1U);
    EXPECT_EQ(starts[0].file, "Kontakte ä");
    EXPECT_EQ(starts[0].script, "Geändert 🙂");
    EXPECT_EQ(starts[0].parameter, "New ü🙂");
}

std::u16string arrived;
fmx::errcode keepParameter(const fmx::Text* /*file*/, const fmx::Text* /*script*/, fmx::uchar /*control*/,
                           const fmx::Data* parameter) {
    const fmx::Text& text = parameter->GetAsText();
    arrived.resize(text.GetSize());
    text.GetUnicode(reinterpret_cast<TextUnit*>(arrived.data()), 0, text.GetSize());
    return 0;
}

// A zero does not end the text, and it may end in a surrogate pair or in half of one.
TEST_F(NotificationTest, EveryUnitOfAnIdentifierArrives) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    message_.cStartScript = keepParameter;
    const std::u16string all[] = {{u'a', 0, u'b'},      {u'a', 0xD83D, 0xDE42}, {0xD83D, 0xDE42, u'b'},
                                  {u'a', 0xD83D, u'b'}, {u'a', 0xDE42, u'b'},   {u'a', 0xD83D},
                                  {u'a', 0xDE42},       {0xFEFF, u'a'}};
    for (const std::u16string& units : all) {
        NSMutableString* identifier = [NSMutableString string];
        for (const char16_t unit : units) {
            [identifier appendFormat:@"%C", unit];
        }
        post(changes(ids(identifier), nil, nil));
        EXPECT_TRUE(arrived == u"New " + units) << &units - all;
    }
}

TEST_F(NotificationTest, ForeignNotificationsWaitForTheRunLoopAndKeepTheirOrder) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 3);
    EXPECT_TRUE(starts.empty());
    turnLoop();
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New 1", "New 2", "New 3"}));
    for (const Start& start : starts) {
        EXPECT_EQ(start.thread, std::this_thread::get_id());
    }
    turnLoop();
    EXPECT_EQ(starts.size(), 3U);
}

// Only what comes from elsewhere waits.
TEST_F(NotificationTest, AChangeOnTheOwningThreadOvertakesTheQueue) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 2);
    post(changes(ids(@"now"), nil, nil));
    EXPECT_EQ(parameters(), std::vector<std::string>{"New now"});
    EXPECT_EQ([listner.get()->notifications count], 2U);
    turnLoop();
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New now", "New 1", "New 2"}));
}

TEST_F(NotificationTest, EveryCommonModeDeliversAndNoOther) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 1);
    const auto turn = [](NSString* mode) {
        const Pool pool;
        [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0]];
    };
    turn(@"a mode of its own");
    EXPECT_TRUE(starts.empty());
    int number = 1;
    NSString* const modes[] = {NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                               @"NSEventTrackingRunLoopMode"};
    for (NSString* mode : modes) {
        turn(mode);
        EXPECT_EQ(starts.size(), static_cast<std::size_t>(number)) << utf8(mode);
        postElsewhere(++number, 1);
    }
}

// What a message to the port was sent with.
struct Sent {
    double seconds;
    bool empty;
    bool unlocked;
};
std::vector<Sent> sent;

BOOL noteSent(id /*self*/, SEL /*selector*/, NSDate* limit, NSMutableArray* components, NSPort* from,
              NSUInteger reserved) {
    NSLock* lock = listner.get()->notificationLock;
    const bool unlocked = [lock tryLock];
    if (unlocked) {
        [lock unlock];
    }
    sent.push_back(
        {[limit timeIntervalSinceNow], components == nil && from == nil && reserved == 0, unlocked});
    return YES;
}

TEST_F(NotificationTest, AForeignThreadSendsAnEmptyMessageWithoutWaitingOrHoldingTheLock) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    sent.clear();
    const ReplacedMethod replaced([NSMachPort class], @selector(sendBeforeDate:components:from:reserved:),
                                  noteSent);
    postElsewhere(1, 1);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_NEAR(sent[0].seconds, 0, 1);
    EXPECT_TRUE(sent[0].empty);
    EXPECT_TRUE(sent[0].unlocked);
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(sent.size(), 1U) << "the owning thread sends none";
}

// The script may do what it likes, for another thread's changes as for its own.
TEST_F(NotificationTest, TheLockIsFreeWhileAScriptIsStarted) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    int free = 0;
    duringStart = [&] {
        NSLock* lock = listner.get()->notificationLock;
        if ([lock tryLock]) {
            ++free;
            [lock unlock];
        }
    };
    postElsewhere(1, 2);
    turnLoop();
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(free, 3);
}

TEST_F(NotificationTest, ABurstFromManyThreadsLosesNothing) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    constexpr int kThreads = 4;
    constexpr int kEach = 250;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([=] {
            const Pool pool;
            for (int i = 0; i < kEach; ++i) {
                post(changes(ids([NSString stringWithFormat:@"%d", t * kEach + i]), nil, nil));
            }
        });
    }
    turnLoopUntilStarted(kThreads * kEach);
    for (std::thread& thread : threads) {
        thread.join();
    }
    turnLoop();
    ASSERT_EQ(starts.size(), std::size_t{kThreads} * kEach);
    std::vector<int> last(kThreads, -1);
    for (const Start& start : starts) {
        const int number = std::stoi(start.parameter.substr(4));
        EXPECT_EQ(number % kEach, last[number / kEach] + 1) << "each thread's own in their order";
        last[number / kEach] = number % kEach;
    }
}

TEST_F(NotificationTest, WhatComesDuringTheDrainIsDrainedToo) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    duringStart = [] {
        if (starts.size() == 1) {
            postElsewhere(10, 2);
        }
    };
    postElsewhere(1, 1);
    [listner.get() handleMachMessage:nullptr];
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New 1", "New 10", "New 11"}));
}

TEST_F(NotificationTest, OneMessageDrainsTheQueue) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 5);
    [listner.get() handleMachMessage:nullptr];
    EXPECT_EQ(starts.size(), 5U);
    EXPECT_EQ([listner.get()->notifications count], 0U);
}

TEST_F(NotificationTest, TheHostsAnswerIsKeptAndNotReported) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    startAnswer = 104;
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(listner.get()->err, 104);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

// Meant: a notification that names no record raises, and nothing here catches it.
TEST_F(NotificationTest, ANotificationThatNamesNothingLeavesAsAnException) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    id thrown = static_cast<id>(objectThrownBy(
        [](void*) { [listner.get() processNotification:notificationOf([NSDictionary dictionary])]; },
        nullptr));
    EXPECT_TRUE([thrown isKindOfClass:[NSException class]]);
    EXPECT_TRUE(starts.empty());
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(starts.size(), 1U) << "the next one works";
}

// The first kind that is there counts, even if it names no record.
TEST_F(NotificationTest, AKindOfChangeWithoutRecordsIsAnExceptionToo) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    for (NSDictionary* info : {changes([NSArray array], ids(@"a"), ids(@"b")),
                               changes(nil, [NSArray array], nil), static_cast<NSDictionary*>(nil)}) {
        const auto process = [](void* userInfo) {
            [listner.get() processNotification:notificationOf(static_cast<NSDictionary*>(userInfo))];
        };
        id thrown = static_cast<id>(objectThrownBy(process, info));
        EXPECT_TRUE([thrown isKindOfClass:[NSException class]]);
    }
    EXPECT_TRUE(starts.empty());
}

TEST_F(NotificationTest, AnExceptionInTheDrainLeavesTheRestForTheNextMessage) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    std::thread([] {
        const Pool pool;
        post(changes(ids(@"1"), nil, nil));
        post([NSDictionary dictionary]);
        post(changes(ids(@"2"), nil, nil));
    }).join();
    const auto drain = [](void*) { [listner.get() handleMachMessage:nullptr]; };
    EXPECT_NE(objectThrownBy(drain, nullptr), nullptr);
    EXPECT_EQ(parameters(), std::vector<std::string>{"New 1"});
    EXPECT_TRUE([listner.get()->notificationLock tryLock]) << "the lock is free";
    [listner.get()->notificationLock unlock];
    EXPECT_EQ(objectThrownBy(drain, nullptr), nullptr);
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New 1", "New 2"}));
}

TEST_F(NotificationTest, AFailureOfTheHostLeavesTheListenerAndStartsNothing) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    const int living = host_double::livingObjects();
    for (int before = 0;; ++before) {
        host_double::failAfter(before, 1 + before % 2);
        bool noMemory = false;
        bool unknown = false;
        try {
            [listner.get() processNotification:notificationOf(changes(ids(@"a"), nil, nil))];
        } catch (const std::bad_alloc&) {
            noMemory = true;
        } catch (const std::exception&) {
            unknown = true;
        }
        const bool failed = host_double::hasFailed();
        host_double::reset();
        EXPECT_EQ(noMemory, failed && before % 2 == 0);
        EXPECT_EQ(unknown, failed && before % 2 == 1);
        EXPECT_EQ(host_double::livingObjects(), living);
        if (!failed) {
            EXPECT_GE(before, 3);
            break;
        }
        EXPECT_TRUE(starts.empty());
    }
    EXPECT_EQ(starts.size(), 1U);
}

TEST_F(NotificationTest, TheUsersIdlenessTurnsTheRunLoop) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 2);
    for (const int level : {1, 2, 3, 4, 0}) {
        EXPECT_TRUE(starts.empty()) << level;
        message_.parm1 = static_cast<fmx::uchar>(level);
        FMExternCallProc(&message_);
    }
    EXPECT_EQ(starts.size(), 2U);
}

TEST_F(NotificationTest, AnExceptionInIdleTimeIsLoggedAndNoCallsError) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    std::thread([] {
        const Pool pool;
        post([NSDictionary dictionary]);
    }).join();
    testing::internal::CaptureStderr();
    FMExternCallProc(&message_);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("dataUsing"), std::string::npos);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    postElsewhere(1, 1);
    FMExternCallProc(&message_);
    EXPECT_EQ(parameters(), std::vector<std::string>{"New 1"});
}

} // namespace
