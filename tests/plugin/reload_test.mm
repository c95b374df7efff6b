#import "plugin/records/reload.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

// In the place of the framework's bundle: notes what it is told, and answers as it is set.
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

namespace {

NSBundle* bundleDouble(NSString* name, BOOL unloads, BOOL loads) {
    BundleDouble* bundle = [[BundleDouble alloc] init];
    bundle->name = name;
    bundle->unloads = unloads;
    bundle->loads = loads;
    return static_cast<NSBundle*>(static_cast<id>(bundle));
}

NSBundle* fetched = nil;
NSBundle* fetch(id /*self*/, SEL /*selector*/, NSString* identifier) {
    tell(std::string("fetch ") + [identifier UTF8String]);
    return fetched;
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
    EXPECT_EXIT((void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
                "Error, framework failed to unload\nAborting\\.\n");
}

TEST_F(ReloadDeathTest, ARefusalToLoadEndsTheProcess) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, NO);
    EXPECT_EXIT((void)call(Do_KORU_Reload), testing::ExitedWithCode(1),
                "Framework unloaded\n(.|\n)*Error, framework failed to load\nAborting\\.\n");
}

TEST_F(ReloadDeathTest, NoBundleToLoadEndsTheProcess) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = nil;
    EXPECT_EXIT((void)call(Do_KORU_Reload), testing::ExitedWithCode(1), "Error, framework failed to load");
}

TEST_F(ReloadTest, TheFrameworkIsUnloadedFetchedAndLoadedInThisOrder) {
    state.g_abframework = bundleDouble(@"old", YES, YES);
    fetched = bundleDouble(@"new", YES, YES);
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(Do_KORU_Reload), "0");
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told, "unload old, release old, fetch com.apple.AddressBook.framework, load new");
    EXPECT_EQ(state.g_abframework, fetched);
    const auto unloaded = log.find("Framework unloaded\n");
    ASSERT_NE(unloaded, std::string::npos);
    EXPECT_NE(log.find("Framework loaded\n", unloaded), std::string::npos);
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

// Everything that holds an object goes; the record types, the new record's mark and the places stay.
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
    state.g_abframework = bundleDouble(@"old", YES, YES);
    EXPECT_EQ(call(Do_KORU_Reload), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no bundles today");
}

} // namespace
