#import "plugin/notify/notification_listener.h"

#import "plugin/notify/update_script.h"
#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include "tests/plugin/thrown_object.h"
#include <functional>
#include <thread>
#include <vector>

// Records that must not be changed.
@interface VelocardLockedPerson : ABPerson
@end
@implementation VelocardLockedPerson
- (BOOL)isReadOnly {
    return YES;
}
@end

@interface VelocardLockedGroup : ABGroup
@end
@implementation VelocardLockedGroup
- (BOOL)isReadOnly {
    return YES;
}
@end

namespace {

// One start of a script, as the host was asked for it.
struct Start {
    std::string file;
    std::string script;
    int control;
    std::string parameter;
    std::thread::id thread;

    bool operator==(const Start&) const = default;
};

std::vector<Start> starts;
std::function<void()> duringStart;
fmx::errcode startAnswer = 0;

fmx::errcode startScript(const fmx::Text* file, const fmx::Text* script, fmx::uchar control,
                         const fmx::Data* parameter) {
    const auto utf8Of = [](const fmx::Text& text) {
        NSString* string = stringFromText(text);
        return string == nil ? std::string() : utf8(string);
    };
    EXPECT_EQ(parameter->GetNativeType(), fmx::Data::kDTText);
    starts.push_back({utf8Of(*file), utf8Of(*script), control, utf8Of(parameter->GetAsText()),
                      std::this_thread::get_id()});
    if (duringStart) {
        duringStart();
    }
    return startAnswer;
}

NSDictionary* changes(NSArray* inserted, NSArray* updated, NSArray* deleted) {
    NSMutableDictionary* info = [NSMutableDictionary dictionary];
    if (inserted != nil) {
        [info setObject:inserted forKey:kABInsertedRecords];
    }
    if (updated != nil) {
        [info setObject:updated forKey:kABUpdatedRecords];
    }
    if (deleted != nil) {
        [info setObject:deleted forKey:kABDeletedRecords];
    }
    return info;
}

NSArray* ids(NSString* first, NSString* second = nil) {
    return [NSArray arrayWithObjects:first, second, nil];
}

void post(NSDictionary* info) {
    [[NSNotificationCenter defaultCenter] postNotificationName:kABDatabaseChangedExternallyNotification
                                                        object:nil
                                                      userInfo:info];
}

// Posts on a thread of its own, one notification for each number.
void postElsewhere(int first, int count) {
    std::thread([=] {
        const Pool pool;
        for (int i = first; i < first + count; ++i) {
            post(changes(ids([NSString stringWithFormat:@"%d", i]), nil, nil));
        }
    }).join();
}

// Turns the run loop until it has nothing to do any more.
void turnRunLoop() {
    const Pool pool;
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0]];
}

// Turns it until so many scripts have been started, for ten seconds at the most.
void turnRunLoopUntilStarted(std::size_t count) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:10];
    while (starts.size() < count && [end timeIntervalSinceNow] > 0) {
        const Pool pool;
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }
}

std::vector<std::string> parameters() {
    std::vector<std::string> all;
    for (const Start& start : starts) {
        all.push_back(start.parameter);
    }
    return all;
}

std::string registerScript(const std::string& file, const std::string& script) {
    const Pool pool;
    const fmx::ExprEnvAutoPtr environment;
    const fmx::DataVectAutoPtr arguments = vectorOf({file, script});
    const fmx::DataAutoPtr result;
    EXPECT_EQ(Do_KORU_RegisterUpdateScript(44, *environment, *arguments, *result), 0);
    return utf8(stringFromText(result->GetAsText()));
}

class NotificationTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        message_.cStartScript = startScript;
        gFMX_ExternCallPtr = &message_;
        starts.clear();
        duringStart = nullptr;
        startAnswer = 0;
    }
    ~NotificationTest() override {
        [[NSNotificationCenter defaultCenter] removeObserver:listner.get()];
        if (listner) {
            [listner.get()->notificationPort invalidate];
        }
        listner.reset();
        gFMX_ExternCallPtr = nullptr;
        host_double::reset();
    }

    FMX_ExternCallStruct message_ = messageOf(kFMXT_Idle, 0);
};

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
    text.GetUnicode(reinterpret_cast<fmx::unichar*>(arrived.data()), 0, text.GetSize());
    return 0;
}

// A zero does not end it, and characters beyond 16 bits may stand at its end or be halved.
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
    turnRunLoop();
    EXPECT_EQ(parameters(), (std::vector<std::string>{"New 1", "New 2", "New 3"}));
    for (const Start& start : starts) {
        EXPECT_EQ(start.thread, std::this_thread::get_id());
    }
    turnRunLoop();
    EXPECT_EQ(starts.size(), 3U);
}

// Only what comes from elsewhere waits.
TEST_F(NotificationTest, AChangeOnTheOwningThreadOvertakesTheQueue) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    postElsewhere(1, 2);
    post(changes(ids(@"now"), nil, nil));
    EXPECT_EQ(parameters(), std::vector<std::string>{"New now"});
    EXPECT_EQ([listner.get()->notifications count], 2U);
    turnRunLoop();
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

TEST_F(NotificationTest, TheListenerIsReadyAfterTheRegistration) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    KORUXNotificationListener* listener = listner.get();
    EXPECT_EQ([listener->notifications count], 0U);
    EXPECT_TRUE([listener->notificationLock isKindOfClass:[NSLock class]]);
    EXPECT_TRUE([listener->notificationPort isKindOfClass:[NSMachPort class]]);
    EXPECT_EQ([listener->notificationPort delegate], listener);
    EXPECT_EQ(listener->scriptName, nil);
    EXPECT_EQ(listener->theParam->GetSize(), 0U);
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
    turnRunLoop();
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
    turnRunLoopUntilStarted(kThreads * kEach);
    for (std::thread& thread : threads) {
        thread.join();
    }
    turnRunLoop();
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

// Meant: there is no deduplication.
TEST_F(NotificationTest, EachRegistrationAddsAStartOfTheLastScript) {
    EXPECT_EQ(registerScript("A", "S1"), "0");
    KORUXNotificationListener* listener = listner.get();
    NSMachPort* port = listener->notificationPort;
    NSMutableArray* queue = listener->notifications;
    EXPECT_EQ(registerScript("B", "S2"), "0");
    EXPECT_EQ(listner.get(), listener);
    EXPECT_EQ(listener->notificationPort, port);
    EXPECT_EQ(listener->notifications, queue);
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 2U);
    for (const Start& start : starts) {
        EXPECT_EQ(start.file, "B");
        EXPECT_EQ(start.script, "S2");
    }
}

TEST_F(NotificationTest, EmptyNamesAreTaken) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    EXPECT_EQ(registerScript("", ""), "0");
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 2U);
    EXPECT_EQ(starts[0].file, "");
    EXPECT_EQ(starts[0].script, "");
}

TEST_F(NotificationTest, TheFirstThreadStaysTheOwner) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    NSThread* owner = listner.get()->notificationThread;
    EXPECT_EQ(owner, [NSThread currentThread]);
    std::thread([] { EXPECT_EQ(registerScript("Contacts", "Changed 2"), "0"); }).join();
    EXPECT_EQ(listner.get()->notificationThread, owner);
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 2U);
    EXPECT_EQ(starts[0].script, "Changed 2");
}

TEST_F(NotificationTest, TheHostsAnswerIsKeptAndNotReported) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    startAnswer = 104;
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(listner.get()->err, 104);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(NotificationTest, AReadOnlyRecordRefusesTheRegistration) {
    EXPECT_EQ(registerScript("A", "S1"), "0");
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    state.g_person = Retained<ABPerson>::adopt([[VelocardLockedPerson alloc] initWithAddressBook:book]);
    state.g_group = Retained<ABGroup>::adopt([[VelocardLockedGroup alloc] initWithAddressBook:book]);
    for (const std::uint32_t type : {kPersonType, kGroupType}) {
        state.g_currentRecordType = type;
        EXPECT_EQ(registerScript("B", "S2"), "!!ERROR!!");
        EXPECT_EQ(errors.g_llasterror, kRecordReadOnly);
        EXPECT_EQ(lastErrorText(), "Record is read only ");
    }
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 1U) << "no observation was added";
    EXPECT_EQ(starts[0].file, "A");
    EXPECT_EQ(starts[0].script, "S1");
    state.g_currentRecordType = kPersonType;
    state.g_person.reset();
    EXPECT_EQ(registerScript("B", "S2"), "0") << "no record is no read-only one";
}

void raiseOnSuspend(id /*self*/, SEL /*selector*/, BOOL /*flag*/) {
    [NSException raise:NSGenericException format:@"no notifications today"];
}

TEST_F(NotificationTest, AnExceptionOfTheRegistrationIsTheCallsError) {
    const ReplacedMethod replaced([NSDistributedNotificationCenter class], @selector(setSuspended:),
                                  raiseOnSuspend);
    EXPECT_EQ(registerScript("A", "S1"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no notifications today");
    EXPECT_TRUE(listner) << "what was done by then stays";
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(parameters(), std::vector<std::string>{"New a"});
}

// Meant: a notification that names no record raises, and nothing here catches it.
TEST_F(NotificationTest, ANotificationThatNamesNothingLeavesAsAnException) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    id thrown = static_cast<id>(objectThrownBy(
        [](void*) {
            [listner.get()
                processNotification:[NSNotification
                                        notificationWithName:kABDatabaseChangedExternallyNotification
                                                      object:nil
                                                    userInfo:[NSDictionary dictionary]]];
        },
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
            [listner.get()
                processNotification:[NSNotification
                                        notificationWithName:kABDatabaseChangedExternallyNotification
                                                      object:nil
                                                    userInfo:static_cast<NSDictionary*>(userInfo)]];
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
            [listner.get()
                processNotification:[NSNotification
                                        notificationWithName:kABDatabaseChangedExternallyNotification
                                                      object:nil
                                                    userInfo:changes(ids(@"a"), nil, nil)]];
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

// A failure in one of its steps leaves the steps before it done.
TEST_F(NotificationTest, AFailureOfTheHostLeavesTheRegistration) {
    std::vector<std::string> names;
    const fmx::ExprEnvAutoPtr environment;
    const fmx::DataVectAutoPtr arguments = vectorOf({"B", "S2"});
    const fmx::DataAutoPtr result;
    int failures = 0;
    for (int before = 0;; ++before) {
        EXPECT_EQ(registerScript("A", "S1"), "0");
        [[NSNotificationCenter defaultCenter] removeObserver:listner.get()];
        const int living = host_double::livingObjects();
        host_double::failAfter(before, 1 + before % 2);
        try {
            EXPECT_EQ(Do_KORU_RegisterUpdateScript(44, *environment, *arguments, *result), 0);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(before % 2, 0);
            ++failures;
        } catch (const std::exception&) {
            EXPECT_EQ(before % 2, 1);
            ++failures;
        }
        const bool failed = host_double::hasFailed();
        host_double::reset();
        EXPECT_EQ(host_double::livingObjects(), living);
        starts.clear();
        post(changes(ids(@"a"), nil, nil));
        names.push_back(starts.empty() ? "none" : starts[0].file + " " + starts[0].script);
        if (!failed) {
            EXPECT_EQ(failures, before);
            break;
        }
    }
    // Text and count of the frame; locale, its assignment, argument, name, argument, name; the frame's
    // result.
    const std::vector<std::string> expected = {"none", "none", "A S1", "A S1", "A S1", "B S1",
                                               "B S1", "B S2", "B S2", "B S2", "B S2", "B S2"};
    EXPECT_EQ(names, expected);
}

TEST_F(NotificationTest, TheEnvironmentIsThatOfTheLastCall) {
    const fmx::ExprEnvAutoPtr first;
    const fmx::ExprEnvAutoPtr second;
    const fmx::DataVectAutoPtr arguments = vectorOf({"A", "S1"});
    const fmx::DataAutoPtr result;
    for (const fmx::ExprEnvAutoPtr* environment : {&first, &second}) {
        EXPECT_EQ(Do_KORU_RegisterUpdateScript(44, **environment, *arguments, *result), 0);
        EXPECT_EQ(listner.get()->environment, environment->get());
    }
}

TEST_F(NotificationTest, TheHostsObjectsAreMadeInOrderAndGoInReverse) {
    host_double::reset();
    [[[KORUXNotificationListener alloc] init] release];
    EXPECT_EQ(host_double::localeType(), 1);
    EXPECT_EQ(host_double::lives(),
              (std::vector<std::string_view>{
                  "+ FM_Text_Constructor1", "+ FM_Text_Constructor1", "+ FM_Text_Constructor1",
                  "+ FM_Locale_Constructor1", "+ FM_Data_Constructor1", "- FM_Data_Delete",
                  "- FM_Locale_Delete", "- FM_Text_Delete", "- FM_Text_Delete", "- FM_Text_Delete"}));
}

TEST_F(NotificationTest, TheHostsObjectsAreMadeOnceAndGoWithTheListener) {
    const int living = host_double::livingObjects();
    KORUXNotificationListener* listener = [[KORUXNotificationListener alloc] init];
    EXPECT_EQ(host_double::livingObjects(), living + 5);
    EXPECT_EQ(listener->notifications, nil);
    EXPECT_EQ(listener->notificationThread, nil);
    EXPECT_EQ(listener->notificationLock, nil);
    EXPECT_EQ(listener->notificationPort, nil);
    EXPECT_EQ(listener->scriptName, nil);
    EXPECT_EQ(listener->environment, nullptr);
    [listener release];
    EXPECT_EQ(host_double::livingObjects(), living);
}

TEST_F(NotificationTest, AFailureWhileTheObjectsAreMadeLeavesNothingBehind) {
    const int living = host_double::livingObjects();
    for (int before = 0; before < 5; ++before) {
        host_double::failAfter(before, 1 + before % 2);
        EXPECT_ANY_THROW((void)[[KORUXNotificationListener alloc] init]);
        EXPECT_TRUE(host_double::hasFailed());
        host_double::reset();
        EXPECT_EQ(host_double::livingObjects(), living) << before;
    }
}

TEST_F(NotificationTest, IdleTimeTurnsTheRunLoop) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    for (const int level : {0, 1, 4}) {
        starts.clear();
        postElsewhere(level, 2);
        message_ = messageOf(kFMXT_Idle, level);
        message_.cStartScript = startScript;
        FMExternCallProc(&message_);
        EXPECT_EQ(starts.size(), 2U) << level;
    }
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
