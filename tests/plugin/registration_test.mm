#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/notification_support.h"
#include "tests/plugin/replaced_method.h"
#include <future>

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

using RegistrationTest = NotificationTest;

TEST_F(RegistrationTest, TheListenerIsReadyAfterTheRegistration) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    KORUXNotificationListener* listener = listner.get();
    EXPECT_EQ([listener->notifications count], 0U);
    EXPECT_TRUE([listener->notificationLock isKindOfClass:[NSLock class]]);
    EXPECT_TRUE([listener->notificationPort isKindOfClass:[NSMachPort class]]);
    EXPECT_EQ([listener->notificationPort delegate], listener);
    EXPECT_EQ(listener->scriptName, nil);
    EXPECT_EQ(listener->theParam->GetSize(), 0U);
}

// Meant: there is no deduplication.
TEST_F(RegistrationTest, EachRegistrationAddsAStartOfTheLastScript) {
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

TEST_F(RegistrationTest, EmptyNamesAreTaken) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    EXPECT_EQ(registerScript("", ""), "0");
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 2U);
    EXPECT_EQ(starts[0].file, "");
    EXPECT_EQ(starts[0].script, "");
}

TEST_F(RegistrationTest, TheFirstThreadStaysTheOwner) {
    EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
    NSThread* owner = listner.get()->notificationThread;
    EXPECT_EQ(owner, [NSThread currentThread]);
    std::thread([] { EXPECT_EQ(registerScript("Contacts", "Changed 2"), "0"); }).join();
    EXPECT_EQ(listner.get()->notificationThread, owner);
    post(changes(ids(@"a"), nil, nil));
    ASSERT_EQ(starts.size(), 2U);
    EXPECT_EQ(starts[0].script, "Changed 2");
}

TEST_F(RegistrationTest, AnyThreadMayBeTheOwner) {
    std::promise<void> registered;
    std::thread::id owner;
    std::thread thread([&] {
        const Pool pool;
        owner = std::this_thread::get_id();
        EXPECT_EQ(registerScript("Contacts", "Changed"), "0");
        registered.set_value();
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:10];
        while (starts.empty() && [end timeIntervalSinceNow] > 0) {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:end];
        }
    });
    registered.get_future().wait();
    post(changes(ids(@"a"), nil, nil));
    thread.join();
    EXPECT_EQ(starts, (std::vector<Start>{{"Contacts", "Changed", 3, "New a", owner}}));
}

TEST_F(RegistrationTest, TheEnvironmentIsThatOfTheLastCall) {
    const OwnedExprEnv first;
    const OwnedExprEnv second;
    const OwnedDataVect arguments = vectorOf({"A", "S1"});
    const OwnedData result;
    for (const OwnedExprEnv* environment : {&first, &second}) {
        EXPECT_EQ(Do_KORU_RegisterUpdateScript(44, **environment, *arguments, *result), 0);
        EXPECT_EQ(listner.get()->environment, environment->get());
    }
}

TEST_F(RegistrationTest, AReadOnlyRecordRefusesTheRegistration) {
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

TEST_F(RegistrationTest, AnExceptionOfTheRegistrationIsTheCallsError) {
    const ReplacedMethod replaced([NSDistributedNotificationCenter class], @selector(setSuspended:),
                                  raiseOnSuspend);
    EXPECT_EQ(registerScript("A", "S1"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no notifications today");
    EXPECT_TRUE(listner) << "what was done by then stays";
    post(changes(ids(@"a"), nil, nil));
    EXPECT_EQ(parameters(), std::vector<std::string>{"New a"});
}

// A failure in one of its steps leaves the steps before it done.
TEST_F(RegistrationTest, AFailureOfTheHostLeavesTheRegistration) {
    std::vector<std::string> names;
    const OwnedExprEnv environment;
    const OwnedDataVect arguments = vectorOf({"B", "S2"});
    const OwnedData result;
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

TEST_F(RegistrationTest, TheHostsObjectsAreMadeOnceAndGoWithTheListener) {
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

TEST_F(RegistrationTest, TheHostsObjectsAreMadeInOrderAndGoInReverse) {
    host_double::reset();
    [[[KORUXNotificationListener alloc] init] release];
    EXPECT_EQ(host_double::localeType(), 1);
    EXPECT_EQ(host_double::lives(),
              (std::vector<std::string_view>{
                  "+ FM_Text_Constructor1", "+ FM_Text_Constructor1", "+ FM_Text_Constructor1",
                  "+ FM_Locale_Constructor1", "+ FM_Data_Constructor1", "- FM_Data_Delete",
                  "- FM_Locale_Delete", "- FM_Text_Delete", "- FM_Text_Delete", "- FM_Text_Delete"}));
}

TEST_F(RegistrationTest, AFailureWhileTheObjectsAreMadeLeavesNothingBehind) {
    const int living = host_double::livingObjects();
    for (int before = 0; before < 5; ++before) {
        host_double::failAfter(before, 1 + before % 2);
        EXPECT_ANY_THROW((void)[[KORUXNotificationListener alloc] init]);
        EXPECT_TRUE(host_double::hasFailed());
        host_double::reset();
        EXPECT_EQ(host_double::livingObjects(), living) << before;
    }
}

} // namespace
