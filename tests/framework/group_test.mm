#include "tests/framework/support.h"

namespace {

class GroupTest : public AddressBookTest {
  protected:
    static std::vector<std::string> groupNames(NSArray* groups) {
        std::vector<std::string> names;
        for (NSUInteger i = 0; i < [groups count]; ++i) {
            names.push_back(text([[groups objectAtIndex:i] valueForProperty:kABGroupNameProperty]));
        }
        return names;
    }
    using Names = std::vector<std::string>;
};

TEST_F(GroupTest, HasMembersInTheOrderOfJoining) {
    ABPerson* ann = person(@"Ann", @"X");
    ABPerson* bob = person(@"Bob", @"X");
    ABPerson* cid = person(@"Cid", @"X");
    ABGroup* friends = group(@"Friends");
    EXPECT_EQ([[friends members] count], 0u);
    EXPECT_TRUE([friends addMember:cid]);
    EXPECT_TRUE([friends addMember:ann]);
    EXPECT_FALSE([friends addMember:ann]);
    EXPECT_EQ(names([friends members]), (Names{"Cid", "Ann"}));
    EXPECT_EQ([[friends members] objectAtIndex:1], ann);
    ASSERT_TRUE([book() save]);
    EXPECT_FALSE([friends addMember:ann]);
    EXPECT_TRUE([friends addMember:bob]);
    EXPECT_TRUE([friends removeMember:cid]);
    EXPECT_FALSE([friends removeMember:cid]);
    EXPECT_EQ(names([friends members]), (Names{"Ann", "Bob"}));
    EXPECT_EQ(groupNames([ann parentGroups]), Names{"Friends"});
    EXPECT_EQ(groupNames([bob parentGroups]), Names{"Friends"});
    EXPECT_EQ([[cid parentGroups] count], 0u);
    NSString* uid = [friends uniqueId];
    reopen();
    EXPECT_EQ(names([(ABGroup*)[book() recordForUniqueId:uid] members]), (Names{"Ann", "Bob"}));
}

TEST_F(GroupTest, AMemberThatLeftCanComeBackBeforeTheSave) {
    ABPerson* ann = person(@"Ann", @"X");
    ABGroup* friends = group(@"Friends");
    [friends addMember:ann];
    ASSERT_TRUE([book() save]);
    EXPECT_TRUE([friends removeMember:ann]);
    EXPECT_TRUE([friends addMember:ann]);
    EXPECT_EQ(names([friends members]), Names{"Ann"});
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(names([friends members]), Names{"Ann"});
}

TEST_F(GroupTest, TakesOnlyRecordsOfTheAddressBook) {
    ABGroup* friends = group(@"Friends");
    ABPerson* loose = [[[ABPerson alloc] initWithAddressBook:book()] autorelease];
    EXPECT_FALSE([friends addMember:loose]);
    EXPECT_FALSE([friends addMember:(ABPerson*)friends]);
    EXPECT_FALSE([friends addSubgroup:(ABGroup*)person(@"Ann", @"X")]);
}

TEST_F(GroupTest, RaisesForNil) {
    ABGroup* friends = group(@"Friends");
    EXPECT_TRUE(raisesInvalidArgument([&] { [friends addMember:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [friends removeMember:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [friends addSubgroup:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [friends removeSubgroup:nil]; }));
    ABPerson* ann = person(@"Ann", @"X");
    NSString* const identifiers[] = {@"1", nil};
    for (NSString* identifier : identifiers) {
        EXPECT_TRUE(raisesInvalidArgument(
            [&] { [friends setDistributionIdentifier:identifier forProperty:nil person:ann]; }));
        EXPECT_TRUE(raisesInvalidArgument(
            [&] { [friends setDistributionIdentifier:identifier forProperty:kABEmailProperty person:nil]; }));
    }
    EXPECT_TRUE(raisesInvalidArgument([&] { [friends distributionIdentifierForProperty:nil person:ann]; }));
    EXPECT_TRUE(raisesInvalidArgument(
        [&] { [friends distributionIdentifierForProperty:kABEmailProperty person:nil]; }));
    EXPECT_EQ([[friends members] count], 0u);
}

TEST_F(GroupTest, TakesMembersBeforeItIsAdded) {
    ABPerson* ann = person(@"Ann", @"X");
    ABGroup* friends = [[[ABGroup alloc] initWithAddressBook:book()] autorelease];
    [friends setValue:@"Friends" forProperty:kABGroupNameProperty];
    EXPECT_TRUE([friends addMember:ann]);
    EXPECT_FALSE([friends addMember:ann]);
    EXPECT_EQ([[ann parentGroups] count], 0u);
    ASSERT_TRUE([book() addRecord:friends]);
    EXPECT_EQ(groupNames([ann parentGroups]), Names{"Friends"});
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(names([friends members]), Names{"Ann"});
}

TEST_F(GroupTest, HoldsGroupsWithoutCircles) {
    ABGroup* a = group(@"a");
    ABGroup* b = group(@"b");
    ABGroup* c = group(@"c");
    EXPECT_FALSE([a addSubgroup:a]);
    EXPECT_TRUE([a addSubgroup:b]);
    EXPECT_FALSE([a addSubgroup:b]);
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE([b addSubgroup:a]);
        ASSERT_TRUE([book() save]);
    }
    EXPECT_TRUE([b addSubgroup:c]);
    EXPECT_FALSE([c addSubgroup:a]);
    EXPECT_TRUE([a addSubgroup:c]);
    EXPECT_EQ(groupNames([a subgroups]), (Names{"b", "c"}));
    EXPECT_EQ(groupNames([c parentGroups]), (Names{"a", "b"}));
    EXPECT_EQ([[a members] count], 0u);
    EXPECT_TRUE([a removeSubgroup:b]);
    EXPECT_FALSE([a removeSubgroup:b]);
    EXPECT_TRUE([b addSubgroup:a]);
    NSString* uid = [b uniqueId];
    reopen();
    EXPECT_EQ(groupNames([(ABGroup*)[book() recordForUniqueId:uid] subgroups]), (Names{"c", "a"}));
}

TEST_F(GroupTest, LosesRecordsThatAreRemoved) {
    ABPerson* ann = person(@"Ann", @"X");
    ABPerson* bob = person(@"Bob", @"X");
    ABGroup* friends = group(@"Friends");
    ABGroup* inner = group(@"Inner");
    [friends addMember:ann];
    [friends addSubgroup:inner];
    ASSERT_TRUE([book() save]);
    [friends addMember:bob];
    [inner addMember:bob];
    EXPECT_TRUE([book() removeRecord:ann]);
    EXPECT_TRUE([book() removeRecord:bob]);
    EXPECT_TRUE([book() removeRecord:inner]);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ([[friends members] count], 0u);
        EXPECT_EQ([[friends subgroups] count], 0u);
        EXPECT_EQ([[bob parentGroups] count], 0u);
        ASSERT_TRUE([book() save]);
    }
    NSString* uid = [friends uniqueId];
    reopen();
    EXPECT_EQ([[(ABGroup*)[book() recordForUniqueId:uid] members] count], 0u);
}

TEST_F(GroupTest, ChoosesAnEntryForEachMember) {
    ABPerson* ann = person(@"Ann", @"X");
    ABMultiValue* mails = list({{kABHomeLabel, @"a@home"}, {kABWorkLabel, @"a@work"}});
    [ann setValue:mails forProperty:kABEmailProperty];
    ABGroup* friends = group(@"Friends");
    NSString* work = [mails identifierAtIndex:1];
    EXPECT_FALSE([friends setDistributionIdentifier:work forProperty:kABEmailProperty person:ann]);
    EXPECT_EQ([friends distributionIdentifierForProperty:kABEmailProperty person:ann], nil);
    [friends addMember:ann];
    EXPECT_TRUE([[friends distributionIdentifierForProperty:kABEmailProperty
                                                     person:ann] isEqual:[mails identifierAtIndex:0]]);
    EXPECT_TRUE([friends setDistributionIdentifier:work forProperty:kABEmailProperty person:ann]);
    EXPECT_FALSE([friends setDistributionIdentifier:@"?" forProperty:kABEmailProperty person:ann]);
    EXPECT_FALSE([friends setDistributionIdentifier:work forProperty:kABNoteProperty person:ann]);
    NSString* groupUid = [friends uniqueId];
    NSString* annUid = [ann uniqueId];
    reopen();
    friends = (ABGroup*)[book() recordForUniqueId:groupUid];
    ann = (ABPerson*)[book() recordForUniqueId:annUid];
    EXPECT_TRUE([[friends distributionIdentifierForProperty:kABEmailProperty person:ann] isEqual:work]);
    EXPECT_TRUE([friends setDistributionIdentifier:nil forProperty:kABEmailProperty person:ann]);
    EXPECT_TRUE([[friends distributionIdentifierForProperty:kABEmailProperty
                                                     person:ann] isEqual:[mails identifierAtIndex:0]]);
}

} // namespace
