#import "plugin/records/reload.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include <gmock/gmock.h>
#include <regex>

// A double of the framework's bundle: records its messages, and returns what is set.
@interface BundleDouble : NSObject {
  @public
    BOOL unloads;
    BOOL loads;
    NSString* name;
}
@end

namespace {

std::string told;

void tell(const std::string& what) {
    told += (told.empty() ? "" : ", ") + what;
}

} // namespace

@implementation BundleDouble
- (BOOL)unload {
    tell(std::string("unload ") + [name UTF8String]);
    return unloads;
}
- (BOOL)load {
    tell(std::string("load ") + [name UTF8String]);
    return loads;
}
- (oneway void)release {
    tell(std::string("release ") + [name UTF8String]);
    [super release];
}
@end

@interface Witness : NSObject {
  @public
    NSString* name;
}
@end
@implementation Witness
- (void)dealloc {
    tell([name UTF8String]);
    [super dealloc];
}
@end

namespace {

NSBundle* bundleDouble(NSString* name, BOOL unloads, BOOL loads) {
    BundleDouble* bundle = [[BundleDouble alloc] init];
    bundle->name = name;
    bundle->unloads = unloads;
    bundle->loads = loads;
    return static_cast<NSBundle*>(static_cast<id>(bundle));
}

// Answers whichever bundle is set, and logs that it was asked.
NSBundle* fetched = nil;
NSBundle* fetch(id /*self*/, SEL /*selector*/, NSString* identifier) {
    tell(std::string("fetch ") + [identifier UTF8String]);
    NSLog(@"fetched");
    return fetched;
}

// The log's lines without their time stamps.
std::string linesOf(const std::string& log) {
    return std::regex_replace(log, std::regex("^.*\\] ", std::regex::multiline), "");
}

// Runs in a child process only, so that the end of the process can be seen.
class ReloadTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        told.clear();
        testing::FLAGS_gtest_death_test_style = "threadsafe";
    }

    ReplacedMethod fetches_ { object_getClass([NSBundle class]), @selector(bundleWithIdentifier:), fetch };
};

using ReloadDeathTest = ReloadTest;

// Meant: nothing has filled the handle yet.
TEST_F(ReloadDeathTest, TheFirstReloadEndsTheProcess) {
    EXPECT_EXIT((void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
                "Error, framework failed to unload\nAborting\\.\n");
}

TEST_F(ReloadDeathTest, ARefusalToUnloadEndsTheProcess) {
    state.g_abframework = bundleDouble(@"old", NO, YES);
    EXPECT_EXIT(
        (void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
        testing::ResultOf(linesOf, testing::StartsWith("Error, framework failed to unload\nAborting.\n")));
}

TEST_F(ReloadDeathTest, ARefusalToLoadEndsTheProcess) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, NO);
    EXPECT_EXIT(
        (void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
        testing::ResultOf(linesOf,
                          testing::StartsWith(
                              "fetched\nFramework unloaded\nError, framework failed to load\nAborting.\n")));
}

TEST_F(ReloadDeathTest, NoBundleToLoadEndsTheProcess) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = nil;
    EXPECT_EXIT((void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
                testing::HasSubstr("Error, framework failed to load\nAborting.\n"));
}

TEST_F(ReloadTest, TheFrameworkIsUnloadedFetchedAndLoadedInThisOrder) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    EXPECT_EQ(linesOf(testing::internal::GetCapturedStderr()),
              "fetched\nFramework unloaded\nFramework loaded\n");
    EXPECT_EQ(told, "unload old, release old, fetch com.apple.AddressBook.framework, load new");
    EXPECT_EQ(state.g_abframework, fetched);
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(ReloadTest, AnotherReloadUnloadsWhatTheOneBeforeHasFetched) {
    state.g_abframework = bundleDouble(@"first", YES, YES);
    fetched = bundleDouble(@"second", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    told.clear();
    fetched = bundleDouble(@"third", YES, YES);
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    EXPECT_EQ(told, "unload second, release second, fetch com.apple.AddressBook.framework, load third");
    testing::internal::GetCapturedStderr();
}

// An object for any variable of the state, which notes its deallocation.
template <typename T>
Retained<T> witness(NSString* name) {
    Witness* object = [[Witness alloc] init];
    object->name = name;
    return Retained<T>::adopt(static_cast<T*>(static_cast<id>(object)));
}

TEST_F(ReloadTest, WhatTheStateHoldsGoesInItsOrderBeforeTheFrameworkDoes) {
    state.gCurrentProperty = witness<NSString>(@"gCurrentProperty");
    state.gCurrentSubgroup = witness<NSObject>(@"gCurrentSubgroup");
    state.gGroupSubgroups = witness<NSArray>(@"gGroupSubgroups");
    state.gCurrentMember = witness<NSObject>(@"gCurrentMember");
    state.gGroupMembers = witness<NSArray>(@"gGroupMembers");
    state.gValues = witness<ABMutableMultiValue>(@"gValues");
    state.gCurrentGroupParentID = witness<NSObject>(@"gCurrentGroupParentID");
    state.gParentGroups = witness<NSArray>(@"gParentGroups");
    state.g_groupSearchResults = witness<NSArray>(@"g_groupSearchResults");
    state.g_personSearchResults = witness<NSArray>(@"g_personSearchResults");
    state.g_searchelement = witness<ABSearchElement>(@"g_searchelement");
    state.g_group = witness<ABGroup>(@"g_group");
    state.g_person = witness<ABPerson>(@"g_person");
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(told, testing::StartsWith(
                          "g_person, g_group, g_searchelement, g_personSearchResults, g_groupSearchResults, "
                          "gParentGroups, gCurrentGroupParentID, gValues, gGroupMembers, gCurrentMember, "
                          "gGroupSubgroups, gCurrentSubgroup, gCurrentProperty, unload old, "));
}

// Every object is released; the record types, gNewRecord and the indexes stay.
TEST_F(ReloadTest, WhatGoesAndWhatStays) {
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anna", @"Smith"));
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Harbour"));
    state.g_searchelement =
        Retained<ABSearchElement>::retain([ABPerson searchElementForProperty:kABFirstNameProperty
                                                                       label:nil
                                                                         key:nil
                                                                       value:@"Anna"
                                                                  comparison:kABEqual]);
    for (Retained<NSArray>* list : {&state.g_personSearchResults, &state.g_groupSearchResults,
                                    &state.gParentGroups, &state.gGroupMembers, &state.gGroupSubgroups}) {
        *list = Retained<NSArray>::retain([NSArray array]);
    }
    for (Retained<NSObject>* element :
         {&state.gCurrentGroupParentID, &state.gCurrentMember, &state.gCurrentSubgroup}) {
        *element = Retained<NSObject>::retain(@"x");
    }
    state.gValues = Retained<ABMutableMultiValue>::adopt([[ABMutableMultiValue alloc] init]);
    state.gCurrentProperty = Retained<NSString>::retain(kABPhoneProperty);
    state.g_currentRecordType = state.g_lastSearchType = kGroupType;
    state.gNewRecord = true;
    std::uint32_t number = 1;
    for (std::uint32_t* kept :
         {&state.gCurrentPersonIndex, &state.gCurrentGroupIndex, &state.gCurrentValuesIndex,
          &state.gCurrentGroupParentIDIndex, &state.gCurrentMemberIndex, &state.gCurrentSubgroupIndex,
          &state.savedCount}) {
        *kept = number++;
    }
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    testing::internal::GetCapturedStderr();

    EXPECT_FALSE(state.g_person);
    EXPECT_FALSE(state.g_group);
    EXPECT_FALSE(state.g_searchelement);
    EXPECT_FALSE(state.g_personSearchResults);
    EXPECT_FALSE(state.g_groupSearchResults);
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_FALSE(state.gCurrentGroupParentID);
    EXPECT_FALSE(state.gValues);
    EXPECT_FALSE(state.gGroupMembers);
    EXPECT_FALSE(state.gCurrentMember);
    EXPECT_FALSE(state.gGroupSubgroups);
    EXPECT_FALSE(state.gCurrentSubgroup);
    EXPECT_FALSE(state.gCurrentProperty);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_TRUE(state.gNewRecord);
    number = 1;
    for (const std::uint32_t kept :
         {state.gCurrentPersonIndex, state.gCurrentGroupIndex, state.gCurrentValuesIndex,
          state.gCurrentGroupParentIDIndex, state.gCurrentMemberIndex, state.gCurrentSubgroupIndex,
          state.savedCount}) {
        EXPECT_EQ(kept, number++);
    }
    EXPECT_EQ(call(Do_KORU_OpenNextRecord), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8004");
}

NSBundle* raiseOnFetch(id /*self*/, SEL /*selector*/, NSString* /*identifier*/) {
    [NSException raise:NSGenericException format:@"no bundles today"];
    return nil;
}

TEST_F(ReloadTest, AnExceptionIsTheCallsError) {
    const ReplacedMethod replaced(object_getClass([NSBundle class]), @selector(bundleWithIdentifier:),
                                  raiseOnFetch);
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anna", @"Smith"));
    state.g_abframework = bundleDouble(@"old", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "!!ERROR!!");
    EXPECT_EQ(linesOf(testing::internal::GetCapturedStderr()), "");
    EXPECT_EQ(lastErrorNumber(), "-8000");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no bundles today");
    EXPECT_FALSE(state.g_person) << "it went before";
}

TEST_F(ReloadTest, AnArgumentIsRefusedBeforeAnythingElse) {
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anna", @"Smith"));
    EXPECT_EQ(call(Do_KORU_Reload, {""}), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_TRUE(state.g_person);
}

} // namespace
