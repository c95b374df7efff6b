// An application that runs and replies.

#include "tests/scriptingbridge/support.h"

#include <cstdlib>
#include <unistd.h>

namespace {

using testing::HasSubstr;

TEST_F(ScriptingBridgeTest, IsToldThePersonAndThenToComeToTheFront) {
    startBus();
    startApplication();
    SBApplication* book = application();
    EXPECT_TRUE([book isRunning]);
    EXPECT_EQ(select(book, @"0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0001:ABPerson"), "");
    EXPECT_EQ(activate(book), "");
    EXPECT_EQ(record(), "started\nshow-contact 0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0001:ABPerson\nactivate\n");
}

TEST_F(ScriptingBridgeTest, TheLogSaysWhyNothingIsShown) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE([application() isRunning]);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("The session bus cannot be reached: "));
    startBus();
    testing::internal::CaptureStderr();
    EXPECT_FALSE([application() isRunning]);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("is not running; start it, or name another"));
}

TEST_F(ScriptingBridgeTest, TheEnvironmentNamesTheApplication) {
    startBus();
    startApplication("answers", "com.example.Our-Contacts");
    EXPECT_FALSE([application() isRunning]);
    ::setenv("ADDRESSBOOK_APPLICATION", "", 1);
    EXPECT_FALSE([application() isRunning]);
    ::setenv("ADDRESSBOOK_APPLICATION", "com.example.Our-Contacts", 1);
    EXPECT_TRUE([application() isRunning]);
    EXPECT_EQ(select(application(), @"a"), "");
    EXPECT_EQ(record(), "started\nshow-contact a\n");
}

TEST_F(ScriptingBridgeTest, RunsFromWhenItOwnsItsNameUntilItEnds) {
    startBus();
    SBApplication* book = application();
    EXPECT_FALSE([book isRunning]);
    startApplication();
    EXPECT_TRUE([book isRunning]);
    stopApplication();
    for (int i = 0; i < 100 && [book isRunning]; ++i) {
        ::usleep(10000);
    }
    EXPECT_FALSE([book isRunning]);
}

TEST_F(ScriptingBridgeTest, OutlivesItsBus) {
    startBus();
    startApplication();
    SBApplication* book = application();
    EXPECT_TRUE([book isRunning]);
    stopApplication();
    stopBus();
    EXPECT_FALSE([book isRunning]);
    startBus();
    startApplication();
    EXPECT_TRUE([book isRunning]);
    EXPECT_EQ(select(book, @"b"), "");
    EXPECT_EQ(activate(book), "");
    EXPECT_EQ(record(), "started\nstarted\nshow-contact b\nactivate\n");
}

TEST_F(ScriptingBridgeTest, TakesEveryIdThatIsText) {
    startBus();
    startApplication();
    SBApplication* book = application();
    NSString* longText = [@"" stringByPaddingToLength:1000000 withString:@"x" startingAtIndex:0];
    EXPECT_EQ(select(book, @""), "");
    EXPECT_EQ(select(book, @"Jürgen 木村"), "");
    EXPECT_EQ(select(book, longText), "");
    EXPECT_EQ(record(), "started\nshow-contact \nshow-contact Jürgen 木村\nshow-contact " +
                            std::string(1000000, 'x') + "\n");
}

TEST_F(ScriptingBridgeTest, RefusesWhatIsNoId) {
    startBus();
    startApplication();
    SBApplication* book = application();
    const unichar surrogate = 0xD800;
    const unichar zero[] = {'a', 0, 'b'};
    EXPECT_THAT(select(book, [NSString stringWithCharacters:&surrogate length:1]), HasSubstr("no id"));
    EXPECT_THAT(select(book, [NSString stringWithCharacters:zero length:3]), HasSubstr("no id"));
    EXPECT_THAT(select(book, nil), HasSubstr("no id"));
    EXPECT_THAT(select(book, [NSNumber numberWithInt:1]), HasSubstr("no id"));
    EXPECT_EQ(record(), "started\n");
}

TEST_F(ScriptingBridgeTest, ShowsTheFirstOfASelectionAndNothingForNone) {
    startBus();
    startApplication();
    id<AddressBookApplication> book = (id<AddressBookApplication>)application();
    SBElementArray* people = [book people];
    [book setSelection:nil];
    [book setSelection:[NSArray array]];
    EXPECT_EQ(record(), "started\n");
    [book
        setSelection:[NSArray arrayWithObjects:[people objectWithID:@"a"], [people objectWithID:@"b"], nil]];
    EXPECT_EQ(record(), "started\nshow-contact a\n");
    EXPECT_NE(
        exceptionOf([](void* book) { [(id)book setSelection:[NSArray arrayWithObject:@"a text"]]; }, book),
        nil);
    EXPECT_EQ(record(), "started\nshow-contact a\n");
}

TEST_F(ScriptingBridgeTest, ThereIsOneApplication) {
    EXPECT_NE(application(), nil);
    EXPECT_TRUE([application() isKindOfClass:[SBObject class]]);
    EXPECT_EQ([SBApplication applicationWithBundleIdentifier:@"com.apple.Mail"], nil);
    EXPECT_EQ([SBApplication applicationWithBundleIdentifier:nil], nil);
}

TEST_F(ScriptingBridgeTest, IsNotConnectedBeforeItIsAsked) {
    startBus();
    const int next = ::dup(0);
    ::close(next);
    SBApplication* book = application();
    [[(id<AddressBookApplication>)book people] objectWithID:@"a"];
    const int after = ::dup(0);
    ::close(after);
    EXPECT_EQ(after, next);
}

TEST_F(ScriptingBridgeTest, WaitsFiveSecondsUnlessToldOtherwise) {
    SBApplication* book = application();
    EXPECT_EQ([book timeout], 300);
    [book setTimeout:60];
    EXPECT_EQ([book timeout], 60);
    [book setTimeout:0];
    EXPECT_EQ([book timeout], 300);
    [book setTimeout:LONG_MIN];
    EXPECT_EQ([book timeout], 300);
    [book setTimeout:LONG_MAX];
    EXPECT_EQ([book timeout], 24L * 60 * 60 * 60);
    EXPECT_FALSE([book isRunning]);
}

} // namespace
