#import "plugin/properties/list_of_values.h"

#import "plugin/records/plugin_state.h"
#include "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

namespace {

class ListOfValuesTest : public PluginTest {
  protected:
    static std::string list(const std::string& type, const std::string& what, const std::string& field) {
        return call(Do_KORU_GetListOfValues, {type, what, field});
    }
};

TEST_F(ListOfValuesTest, TheTypeIsSetBeforeTheWordsAreLookedAt) {
    EXPECT_EQ(list("GROUP", "", ""), "!!ERROR!!");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(lastErrorText() + lastErrorNumber(), "Invalid Number of Parameters -3");
    EXPECT_EQ(list("contact", "x", "y"), "!!ERROR!!");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(lastErrorText() + lastErrorNumber(), "Invalid Parameter value(s) -4");
}

TEST_F(ListOfValuesTest, NothingElseOfTheStateChanges) {
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Crew"));
    [state.g_group.get() addMember:addPerson(@"Anne", @"Smith")];
    state.gCurrentProperty = Retained<NSString>::retain(@"Phone");
    state.gCurrentMemberIndex = 5;
    state.g_lastSearchType = kPersonType;
    EXPECT_EQ(list("group", "members", "name"), "Anne Smith ");
    EXPECT_EQ(utf8(state.gCurrentProperty.get()), "Phone");
    EXPECT_EQ(state.gCurrentMemberIndex, 5U);
    EXPECT_FALSE(state.gGroupMembers);
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
}

TEST_F(ListOfValuesTest, ThePartsOfANameAreThoseOfThePerson) {
    ABPerson* person = addPerson(nil, nil);
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Crew"));
    [state.g_group.get() addMember:person];
    EXPECT_EQ(list("group", "members", "name"), "");
    const std::pair<NSString*, const char*> parts[] = {
        {kABSuffixProperty, "Jr."},
        {kABLastNameProperty, "Smith Jr."},
        {kABMiddleNameProperty, "Maria Smith Jr."},
        {kABTitleProperty, "Dr. Maria Smith Jr."},
        {kABFirstNameProperty, "Dr. Anne Maria Smith Jr."},
    };
    NSString* const values[] = {@"Jr.", @"Smith", @"Maria", @"Dr.", @"Anne"};
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        [person setValue:values[i] forProperty:parts[i].first];
        EXPECT_EQ(list("group", "members", "name"), parts[i].second);
    }
    [person removeValueForProperty:kABSuffixProperty];
    EXPECT_EQ(list("group", "members", "name"), "Dr. Anne Maria Smith ");
}

TEST_F(ListOfValuesTest, TheOrderIsTheFrameworks) {
    ABGroup* group = addGroup(@"Crew");
    state.g_group = Retained<ABGroup>::retain(group);
    for (NSString* name : {@"Zoe", @"Anne", @"Ben"}) {
        [group addMember:addPerson(name, nil)];
    }
    std::string names;
    for (NSUInteger i = 0; i < 3; ++i) {
        ABPerson* member = [[group members] objectAtIndex:i];
        names += (i == 0 ? "" : "\r") + utf8([member valueForProperty:kABFirstNameProperty]) + " ";
    }
    EXPECT_EQ(list("group", "members", "name"), names);
}

TEST_F(ListOfValuesTest, NoListIsEmptyAndNoError) {
    const auto none = +[](id, SEL) -> NSArray* { return nil; };
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Crew"));
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anne", nil));
    const ReplacedMethod members([ABGroup class], @selector(members), none);
    const ReplacedMethod parents([ABGroup class], @selector(parentGroups), none);
    const ReplacedMethod groups([ABPerson class], @selector(parentGroups), none);
    EXPECT_EQ(list("group", "members", "name"), "");
    EXPECT_EQ(list("group", "groups", "name"), "");
    EXPECT_EQ(list("person", "groups", "uid"), "");
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(ListOfValuesTest, ExceptionsFailTheCall) {
    const auto raise = +[](id, SEL) -> NSArray* {
        [NSException raise:NSInternalInconsistencyException format:@"no members"];
        return nil;
    };
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Crew"));
    const ReplacedMethod members([ABGroup class], @selector(members), raise);
    EXPECT_EQ(list("group", "members", "name"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText() + lastErrorNumber(), "Exception caught in function no members-8000");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
}

} // namespace
