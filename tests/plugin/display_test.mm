#import "plugin/records/display.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include "tests/plugin/thrown_object.h"
#import <ScriptingBridge/ScriptingBridge.h>
#include <vector>

namespace {

// The messages that the application and its elements got, in order, and the one that raises an exception.
std::vector<std::string> told;
std::string raisedAt;
id thrownInstead = nil;

void tell(const std::string& what) {
    told.push_back(what);
    if (!raisedAt.empty() && what.starts_with(raisedAt)) {
        if (thrownInstead != nil) {
            throwObject(thrownInstead);
        }
        [NSException raise:NSGenericException format:@"%s: not today", raisedAt.c_str()];
    }
}

} // namespace

// In the place of a person in the application, and of the list of them.
@interface PeopleDouble : NSObject
@end
@implementation PeopleDouble
- (id)objectWithID:(NSString*)identifier {
    tell("objectWithID: " + utf8(identifier));
    return [NSString stringWithFormat:@"the person %@", identifier];
}
@end

// In the place of the application.
@interface ApplicationDouble : NSObject {
  @public
    BOOL running;
}
@end
@implementation ApplicationDouble
- (BOOL)isRunning {
    tell("isRunning");
    return running;
}
- (id)people {
    tell("people");
    return [[[PeopleDouble alloc] init] autorelease];
}
- (void)setSelection:(NSArray*)selection {
    tell("setSelection: " + utf8([selection componentsJoinedByString:@", "]));
}
- (void)activate {
    tell("activate");
}
@end

namespace {

ApplicationDouble* application = nil;

id applicationFor(id /*self*/, SEL /*selector*/, NSString* identifier) {
    tell("applicationWithBundleIdentifier: " + utf8(identifier));
    return application;
}

class DisplayTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        application = [[[ApplicationDouble alloc] init] autorelease];
        application->running = YES;
        told.clear();
        raisedAt.clear();
        thrownInstead = nil;
    }

    ReplacedMethod replaced_ {
        object_getClass([SBApplication class]), @selector(applicationWithBundleIdentifier:), applicationFor
    };
};

const std::vector<std::string> kAll = {
    "applicationWithBundleIdentifier: com.apple.AddressBook",
    "isRunning",
    "people",
    "objectWithID: 1:ABPerson",
    "setSelection: the person 1:ABPerson",
    "activate",
};

TEST_F(DisplayTest, ThePersonIsSelectedAndTheApplicationComesToTheFront) {
    EXPECT_EQ(call(Do_KORU_Display, {"1:ABPerson"}), "0");
    EXPECT_EQ(told, kAll);
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(DisplayTest, AnApplicationThatDoesNotRunIsToldNothing) {
    application->running = NO;
    EXPECT_EQ(call(Do_KORU_Display, {"1:ABPerson"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8032");
    EXPECT_EQ(lastErrorText(), "Address Book is not started ");
    EXPECT_EQ(told, std::vector<std::string>(kAll.begin(), kAll.begin() + 2));
}

TEST_F(DisplayTest, NoApplicationIsOneThatDoesNotRun) {
    application = nil;
    EXPECT_EQ(call(Do_KORU_Display, {"1:ABPerson"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8032");
}

// Whichever message raises, the call fails with its exception, and no further message is sent.
TEST_F(DisplayTest, AnExceptionEndsTheCall) {
    for (std::size_t i = 0; i < kAll.size(); ++i) {
        told.clear();
        raisedAt = kAll[i].substr(0, kAll[i].find(' '));
        EXPECT_EQ(call(Do_KORU_Display, {"1:ABPerson"}), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        EXPECT_EQ(lastErrorText(), "Exception caught in function " + raisedAt + ": not today");
        EXPECT_EQ(told,
                  std::vector<std::string>(kAll.begin(), kAll.begin() + static_cast<std::ptrdiff_t>(i) + 1));
    }
}

TEST_F(DisplayTest, WhatIsThrownAndNoExceptionPasses) {
    raisedAt = "setSelection:";
    thrownInstead = @"no exception";
    EXPECT_EQ(objectThrownBy([](void*) { call(Do_KORU_Display, {"1:ABPerson"}); }, nullptr), thrownInstead);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

// The id is not checked: it may be unknown, a group's, or any text.
TEST_F(DisplayTest, TheIdIsHandedOverAsItIs) {
    for (const std::string id : {"nobody", "1:ABGroup", "ü🙂", " 1 "}) {
        told.clear();
        EXPECT_EQ(call(Do_KORU_Display, {id}), "0");
        EXPECT_EQ(told.at(3), "objectWithID: " + id);
    }
}

TEST_F(DisplayTest, TheCurrentRecordDoesNotMatterAndStays) {
    ABPerson* anna = addPerson(@"Anna", @"Smith");
    EXPECT_EQ(call(Do_KORU_Open, {utf8([anna uniqueId])}), "0");
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_Display, {"1:ABPerson"}), "0");
    EXPECT_EQ(state.g_person.get(), anna);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
}

TEST_F(DisplayTest, OneArgumentIsTaken) {
    EXPECT_EQ(call(Do_KORU_Display), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_EQ(call(Do_KORU_Display, {"1", "2"}), "!!ERROR!!");
    EXPECT_TRUE(told.empty());
}

BOOL isRunning(id /*self*/, SEL /*selector*/) {
    return YES;
}

// An application that would have to be asked over the bus: an empty id ends the call before that.
class RealApplicationTest : public PluginTest {
  protected:
    ReplacedMethod replaced_ { [SBApplication class], @selector(isRunning), isRunning };
};

TEST_F(RealApplicationTest, AnEmptyIdIsAnException) {
    EXPECT_EQ(call(Do_KORU_Display, {""}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8000");
    EXPECT_EQ(lastErrorText(), "Exception caught in function What is to be selected has no id that is text");
}

TEST_F(RealApplicationTest, AnIdWithAZeroIsAnException) {
    const Pool pool;
    OwnedText text;
    const fmx::uint16 units[] = {'1', 0, '2'};
    text->AssignUnicodeWithLength(units, 3);
    OwnedData argument;
    argument->SetAsText(*text, argument->GetLocale());
    OwnedDataVect arguments;
    arguments->PushBack(*argument);
    const OwnedExprEnv environment;
    const OwnedData result;
    EXPECT_EQ(Do_KORU_Display(43, *environment, *arguments, *result), 0);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
}

} // namespace
