#include "tests/framework/support.h"

namespace {

using Names = std::vector<std::string>;

class SearchTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        ABPerson* ann = person(@"Ann", @"Stra\u00dfe");
        ABPerson* bob = person(@"Bob", @"STRASSE");
        ABPerson* cid = person(@"Cid", @"Smith");
        person(@"Dot", nil);
        setFlags(ann, 1);
        setFlags(bob, 17);
        setFlags(cid, 32);
        NSDate* today = [NSDate date];
        [ann setValue:[today dateByAddingTimeInterval:86400 * 2] forProperty:kABBirthdayProperty];
        [bob setValue:[today dateByAddingTimeInterval:-86400 * 365.25 * 20] forProperty:kABBirthdayProperty];
        [cid setValue:[today dateByAddingTimeInterval:-86400 * 100] forProperty:kABBirthdayProperty];
        [ann setValue:list({{kABHomeLabel, @"111"}, {kABWorkLabel, @"222"}}) forProperty:kABPhoneProperty];
        [bob setValue:list({{kABHomeLabel, @"222"}}) forProperty:kABPhoneProperty];
        NSDictionary* here = [NSDictionary
            dictionaryWithObjectsAndKeys:@"Berlin", kABAddressCityKey, @"Germany", kABAddressCountryKey, nil];
        NSDictionary* there = [NSDictionary dictionaryWithObjectsAndKeys:@"Germany", kABAddressCityKey, nil];
        [ann setValue:list({{kABHomeLabel, here}}) forProperty:kABAddressProperty];
        [bob setValue:list({{kABWorkLabel, there}}) forProperty:kABAddressProperty];
    }
    static void setFlags(ABPerson* person, int flags) {
        [person setValue:[NSNumber numberWithInt:flags] forProperty:kABPersonFlags];
    }
    static ABSearchElement* element(NSString* property, id value, ABSearchComparison comparison) {
        return [ABPerson searchElementForProperty:property
                                            label:nil
                                              key:nil
                                            value:value
                                       comparison:comparison];
    }
    // Runs a search with everything unsaved, with everything saved, and by matching record after record.
    void expect(NSString* property, id value, ABSearchComparison comparison, Names expected,
                NSString* label = nil, NSString* key = nil) {
        for (int pass = 0; pass < 2; ++pass) {
            EXPECT_EQ(found(property, value, comparison, label, key), expected)
                << text(property) << " comparison " << comparison << (pass ? " saved" : " unsaved");
            Names matching;
            ABSearchElement* search = [ABPerson searchElementForProperty:property
                                                                   label:label
                                                                     key:key
                                                                   value:value
                                                              comparison:comparison];
            NSArray* people = [book() people];
            for (NSUInteger i = 0; i < [people count]; ++i) {
                if ([search matchesRecord:[people objectAtIndex:i]]) {
                    matching.push_back(
                        text([[people objectAtIndex:i] valueForProperty:kABFirstNameProperty]));
                }
            }
            EXPECT_EQ(matching, expected)
                << text(property) << " comparison " << comparison << " record by record";
            ASSERT_TRUE([book() save]);
        }
    }
};

TEST_F(SearchTest, ComparesText) {
    NSString* last = kABLastNameProperty;
    expect(last, @"Stra\u00dfe", kABEqual, {"Ann"});
    expect(last, @"Smith", kABNotEqual, {"Ann", "Bob", "Dot"});
    expect(last, @"strasse", kABEqualCaseInsensitive, {"Ann", "Bob"});
    expect(last, @"strasse", kABNotEqualCaseInsensitive, {"Cid", "Dot"});
    expect(last, @"mit", kABContainsSubString, {"Cid"});
    expect(last, @"RASS", kABContainsSubStringCaseInsensitive, {"Ann", "Bob"});
    expect(last, @"S", kABPrefixMatch, {"Ann", "Bob", "Cid"});
    expect(last, @"str", kABPrefixMatchCaseInsensitive, {"Ann", "Bob"});
    expect(last, @"mit", kABDoesNotContainSubString, {"Ann", "Bob", "Dot"});
    expect(last, @"RASS", kABDoesNotContainSubStringCaseInsensitive, {"Cid", "Dot"});
    expect(last, @"th", kABSuffixMatch, {"Cid"});
    expect(last, @"SSE", kABSuffixMatchCaseInsensitive, {"Ann", "Bob"});
}

TEST_F(SearchTest, ComparesNumbers) {
    const auto flags = [](int value) { return [NSNumber numberWithInt:value]; };
    expect(kABPersonFlags, flags(17), kABEqual, {"Bob"});
    expect(kABPersonFlags, flags(17), kABNotEqual, {"Ann", "Cid", "Dot"});
    expect(kABPersonFlags, flags(17), kABLessThan, {"Ann"});
    expect(kABPersonFlags, flags(17), kABLessThanOrEqual, {"Ann", "Bob"});
    expect(kABPersonFlags, flags(17), kABGreaterThan, {"Cid"});
    expect(kABPersonFlags, flags(17), kABGreaterThanOrEqual, {"Bob", "Cid"});
    expect(kABPersonFlags, flags(1), kABBitsInBitFieldMatch, {"Ann", "Bob"});
}

TEST_F(SearchTest, ComparesDatesWithToday) {
    NSNumber* week = number(7 * 86400);
    expect(kABBirthdayProperty, week, kABWithinIntervalAroundToday, {"Ann"});
    expect(kABBirthdayProperty, week, kABWithinIntervalAroundTodayYearless, {"Ann", "Bob"});
    expect(kABBirthdayProperty, week, kABNotWithinIntervalAroundToday, {"Bob", "Cid", "Dot"});
    expect(kABBirthdayProperty, week, kABNotWithinIntervalAroundTodayYearless, {"Cid", "Dot"});
    expect(kABBirthdayProperty, week, kABWithinIntervalFromToday, {"Ann"});
    expect(kABBirthdayProperty, week, kABNotWithinIntervalFromToday, {"Bob", "Cid", "Dot"});
    expect(kABBirthdayProperty, number(200 * 86400), kABWithinIntervalFromTodayYearless, {"Ann", "Bob"});
    expect(kABBirthdayProperty, number(200 * 86400), kABNotWithinIntervalFromTodayYearless, {"Cid", "Dot"});
    expect(kABBirthdayProperty, [NSDate date], kABGreaterThan, { "Ann" });
}

TEST_F(SearchTest, FindsWhatIsSetAndWhatIsNot) {
    expect(kABLastNameProperty, nil, kABEqual, {"Ann", "Bob", "Cid"});
    expect(kABLastNameProperty, nil, kABNotEqual, {"Dot"});
    expect(kABPhoneProperty, nil, kABEqual, {"Ann", "Bob"});
    expect(kABPhoneProperty, nil, kABEqual, {"Ann"}, kABWorkLabel);
    expect(@"nonsense", nil, kABEqual, {});
    expect(@"nonsense", @"x", kABEqual, {});
}

TEST_F(SearchTest, LooksAtLabelsAndKeys) {
    expect(kABPhoneProperty, @"222", kABEqual, {"Ann", "Bob"});
    expect(kABPhoneProperty, @"222", kABEqual, {"Ann"}, kABWorkLabel);
    expect(kABPhoneProperty, @"222", kABEqual, {}, @"Cottage");
    expect(kABAddressProperty, @"Germany", kABEqual, {"Bob"}, nil, kABAddressCityKey);
    expect(kABAddressProperty, @"Germany", kABEqual, {"Ann"}, kABHomeLabel, kABAddressCountryKey);
    expect(kABAddressProperty, @"Germany", kABEqual, {}, kABHomeLabel, kABAddressCityKey);
}

TEST_F(SearchTest, JoinsConditions) {
    ABSearchElement* strasse = element(kABLastNameProperty, @"strasse", kABEqualCaseInsensitive);
    ABSearchElement* company = element(kABPersonFlags, [NSNumber numberWithInt:1], kABEqual);
    ABSearchElement* cid = element(kABFirstNameProperty, @"Cid", kABEqual);
    const auto joined = [](ABSearchConjunction conjunction, NSArray* children) {
        return [ABSearchElement searchElementForConjunction:conjunction children:children];
    };
    NSArray* both = [NSArray arrayWithObjects:company, strasse, nil];
    ABSearchElement* either =
        joined(kABSearchOr, [NSArray arrayWithObjects:cid, joined(kABSearchAnd, both), nil]);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(names([book() recordsMatchingSearchElement:joined(kABSearchAnd, both)]), Names{"Ann"});
        EXPECT_EQ(names([book() recordsMatchingSearchElement:joined(kABSearchOr, both)]),
                  (Names{"Ann", "Bob"}));
        EXPECT_EQ(names([book() recordsMatchingSearchElement:either]), (Names{"Ann", "Cid"}));
        EXPECT_TRUE([either matchesRecord:[[book() people] objectAtIndex:2]]);
        EXPECT_FALSE([either matchesRecord:[[book() people] objectAtIndex:1]]);
        ASSERT_TRUE([book() save]);
    }
    EXPECT_TRUE(raisesInvalidArgument([&] { [either matchesRecord:nil]; }));
}

TEST_F(SearchTest, FindsOnlyItsKind) {
    ABGroup* friends = group(@"Smith");
    ABSearchElement* groups = [ABGroup searchElementForProperty:kABGroupNameProperty
                                                          label:nil
                                                            key:nil
                                                          value:@"Smith"
                                                     comparison:kABEqual];
    ABSearchElement* anybody = [ABSearchElement
        searchElementForConjunction:kABSearchOr
                           children:[NSArray
                                        arrayWithObjects:groups,
                                                         element(kABLastNameProperty, @"Smith", kABEqual),
                                                         nil]];
    for (int pass = 0; pass < 2; ++pass) {
        NSArray* answer = [book() recordsMatchingSearchElement:groups];
        ASSERT_EQ([answer count], 1u);
        EXPECT_EQ([answer objectAtIndex:0], friends);
        EXPECT_EQ([[book() recordsMatchingSearchElement:anybody] count], 2u);
        EXPECT_EQ([[book() recordsMatchingSearchElement:anybody] lastObject], friends);
        ASSERT_TRUE([book() save]);
    }
    EXPECT_FALSE([groups matchesRecord:[[book() people] objectAtIndex:2]]);
}

TEST_F(SearchTest, SeesUnsavedChanges) {
    ASSERT_TRUE([book() save]);
    NSArray* people = [book() people];
    [[people objectAtIndex:2] setValue:@"Jones" forProperty:kABLastNameProperty];
    [[people objectAtIndex:3] setValue:@"Smith" forProperty:kABLastNameProperty];
    [book() removeRecord:[people objectAtIndex:0]];
    person(@"Eve", @"Smith");
    EXPECT_EQ(found(kABLastNameProperty, @"Smith", kABEqual), (Names{"Dot", "Eve"}));
    EXPECT_EQ(found(kABLastNameProperty, @"Smith", kABNotEqual), (Names{"Bob", "Cid"}));
    EXPECT_EQ(
        store()
            .search({addressbook::Condition{
                        addressbook::Kind::person, "Last", {}, {}, "Smith", addressbook::Comparison::equal}},
                    {})
            .size(),
        1u); // none of it is on the disk
}

TEST_F(SearchTest, AnswersEveryComparison) {
    for (int pass = 0; pass < 2; ++pass) {
        for (int comparison = kABEqual; comparison <= kABNotWithinIntervalFromTodayYearless; ++comparison) {
            for (id value : std::vector<id>{@"Smith", @"", number(1), [NSDate date], [NSData data],
                                            [NSArray array], [NSDictionary dictionary]}) {
                for (NSString* property : {kABLastNameProperty, kABPersonFlags, kABBirthdayProperty,
                                           kABPhoneProperty, kABAddressProperty, kABUIDProperty}) {
                    ABSearchElement* search = element(property, value, comparison);
                    NSArray* answer = [book() recordsMatchingSearchElement:search];
                    NSArray* people = [book() people];
                    for (NSUInteger i = 0; i < [people count]; ++i) {
                        EXPECT_EQ([search matchesRecord:[people objectAtIndex:i]],
                                  [answer containsObject:[people objectAtIndex:i]])
                            << text(property) << ' ' << comparison << ' ' << text(value);
                    }
                }
            }
        }
        ASSERT_TRUE([book() save]);
    }
}

TEST_F(SearchTest, RaisesForWhatIsNoSearch) {
    const auto invalid = [](NSException* exception) {
        return [[exception name] isEqual:NSInvalidArgumentException];
    };
    EXPECT_TRUE(invalid(raised([] { element(nil, @"x", kABEqual); })));
    EXPECT_TRUE(invalid(raised([] { element(kABNoteProperty, nil, kABLessThan); })));
    EXPECT_TRUE(invalid(raised([] { element(kABNoteProperty, @"x", 25); })));
    EXPECT_TRUE(invalid(raised([] { element(kABNoteProperty, @"x", -1); })));
    EXPECT_TRUE(invalid(raised([] { element(kABNoteProperty, [NSNull null], kABEqual); })));
    const auto join = [](ABSearchConjunction conjunction, NSArray* children) {
        return raised([&] { [ABSearchElement searchElementForConjunction:conjunction children:children]; });
    };
    EXPECT_TRUE(invalid(join(kABSearchAnd, nil)));
    EXPECT_TRUE(invalid(join(kABSearchAnd, [NSArray array])));
    EXPECT_TRUE(invalid(join(kABSearchAnd, [NSArray arrayWithObject:@"x"])));
    EXPECT_TRUE(invalid(join(2, [NSArray arrayWithObject:element(kABNoteProperty, @"x", kABEqual)])));
    EXPECT_EQ(text(join(kABSearchOr, nil)), "Joining searches needs at least one of them");
}

} // namespace
