// Walks through long lists, and the list of entries that a record caches while nothing changes.

#include "tests/framework/support.h"

using addressbook::Kind;

namespace {

class WalkTest : public AddressBookTest {
  protected:
    // People who are called by their places, saved by another process.
    void fill(int people) {
        addressbook::ChangeSet all;
        for (int i = 0; i < people; ++i) {
            all.records.push_back(
                {addressbook::newUid(Kind::person), Kind::person, true, {{"First", std::to_string(i)}}});
        }
        store().save(all);
    }
    void saveElsewhere(ABPerson* one, const char* property, addressbook::Value value) {
        addressbook::ChangeSet elsewhere;
        elsewhere.records.push_back({text([one uniqueId]), Kind::person, false, {{property, value}}});
        store().save(elsewhere);
    }
    static std::string firstOf(NSArray* people, NSUInteger index) {
        return text([[people objectAtIndex:index] valueForProperty:kABFirstNameProperty]);
    }
    static std::string phoneOf(ABPerson* one) {
        ABMultiValue* phones = [one valueForProperty:kABPhoneProperty];
        return [phones count] == 0 ? "none" : text([phones valueAtIndex:0]);
    }
};

} // namespace

TEST_F(WalkTest, LongListsAnswerTheSameRecordsAgain) {
    constexpr int kPeople = 2500; // more than a list keeps
    fill(kPeople);
    NSArray* people = [book() people];
    ASSERT_EQ([people count], static_cast<NSUInteger>(kPeople));
    ABPerson* held = [[people objectAtIndex:3] retain];
    ABPerson* borrowed = [people objectAtIndex:4];
    for (int twice = 0; twice < 2; ++twice) {
        for (int i = 0; i < kPeople; ++i) {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            EXPECT_EQ(firstOf(people, i), std::to_string(i));
            [pool release];
        }
    }
    EXPECT_EQ([people objectAtIndex:3], held);
    EXPECT_EQ(firstOf(people, kPeople - 1), "2499");
    EXPECT_EQ(firstOf(people, 0), "0");
    EXPECT_EQ(text([borrowed valueForProperty:kABFirstNameProperty]), "4");
    [held release];
}

TEST_F(WalkTest, UnsavedChangesSurviveTheObjectsThatMadeThem) {
    fill(1500);
    NSArray* people = [book() people];
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[people objectAtIndex:5] setValue:@"changed" forProperty:kABFirstNameProperty];
    [people objectAtIndex:5 + 1024]; // takes its place
    [pool release];
    EXPECT_EQ(firstOf(people, 5), "changed");
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(firstOf(people, 5), "changed");
    EXPECT_EQ(firstOf([book() people], 5), "changed");
}

TEST_F(WalkTest, WhatIsReadAheadIsNoOlderThanTheRest) {
    fill(10);
    NSArray* people = [book() people];
    EXPECT_EQ(firstOf(people, 0), "0");
    EXPECT_EQ(firstOf(people, 1), "1"); // the others are read ahead
    const auto rows = store().rows(Kind::person);
    addressbook::ChangeSet elsewhere;
    elsewhere.records.push_back({store().find(rows[2])->uid, Kind::person, false, {{"First", "new"}}});
    elsewhere.removed.push_back(store().find(rows[3])->uid);
    store().save(elsewhere);
    EXPECT_EQ([[book() people] count], 9U); // it takes notice
    EXPECT_EQ(firstOf(people, 2), "new");
    EXPECT_EQ(firstOf(people, 3), "nil");
    EXPECT_EQ(firstOf(people, 4), "4");
}

TEST_F(WalkTest, AListThatIsKeptFollowsEveryChange) {
    ABPerson* one = person(@"Ann", @"Lee");
    [one setValue:list({{kABPhoneWorkLabel, @"1"}}) forProperty:kABPhoneProperty];
    [one setValue:list({{kABEmailWorkLabel, @"a@b"}}) forProperty:kABEmailProperty];
    EXPECT_EQ(phoneOf(one), "1");
    [one setValue:list({{kABPhoneWorkLabel, @"2"}}) forProperty:kABPhoneProperty];
    EXPECT_EQ(phoneOf(one), "2");
    EXPECT_EQ(text([[one valueForProperty:kABEmailProperty] valueAtIndex:0]), "a@b");
    EXPECT_EQ(phoneOf(one), "2");
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(phoneOf(one), "2");
    saveElsewhere(one, "Phone", addressbook::MultiValue{{{"X", "home", "3"}}, ""});
    [book() people]; // takes notice
    EXPECT_EQ(phoneOf(one), "3");
    [one removeValueForProperty:kABPhoneProperty];
    EXPECT_EQ(phoneOf(one), "none");
}
