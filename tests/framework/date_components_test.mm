#include "tests/framework/support.h"

namespace {

class DateComponentsTest : public AddressBookTest {
  protected:
    static NSDateComponents* day(NSInteger year, NSInteger month, NSInteger day) {
        NSDateComponents* parts = [[[NSDateComponents alloc] init] autorelease];
        if (year != 0) {
            [parts setYear:year];
        }
        [parts setMonth:month];
        [parts setDay:day];
        return parts;
    }
    static NSDate* moment(const char* words) {
        return [NSDate dateWithNaturalLanguageString:[NSString stringWithUTF8String:words]];
    }
    static std::string local(NSDate* date) {
        return text([date descriptionWithCalendarFormat:@"%Y-%m-%d %H:%M" timeZone:nil locale:nil]);
    }
    static std::string words(NSDateComponents* parts) {
        if (parts == nil) {
            return "nil";
        }
        const auto number = [](NSInteger value) {
            return value == NSIntegerMax ? std::string("none") : std::to_string(value);
        };
        return number([parts year]) + " " + number([parts month]) + " " + number([parts day]);
    }
};

TEST_F(DateComponentsTest, TheBirthdayAsItsDay) {
    ABPerson* one = person(@"Ann", nil);
    EXPECT_EQ([one valueForProperty:kABBirthdayComponentsProperty], nil);
    ASSERT_TRUE([one setValue:moment("1980-03-22 08:30") forProperty:kABBirthdayProperty]);
    NSDateComponents* told = [one valueForProperty:kABBirthdayComponentsProperty];
    EXPECT_EQ(words(told), "1980 3 22");
    EXPECT_TRUE([[[told calendar] calendarIdentifier] isEqual:@"gregorian"]);

    ASSERT_TRUE([one setValue:day(1969, 12, 31) forProperty:kABBirthdayComponentsProperty]);
    EXPECT_EQ(local([one valueForProperty:kABBirthdayProperty]), "1969-12-31 12:00");
    NSString* uid = [one uniqueId];
    reopen();
    ABRecord* same = [book() recordForUniqueId:uid];
    EXPECT_EQ(words([same valueForProperty:kABBirthdayComponentsProperty]), "1969 12 31");

    EXPECT_TRUE([same removeValueForProperty:kABBirthdayComponentsProperty]);
    EXPECT_EQ([same valueForProperty:kABBirthdayProperty], nil);
}

TEST_F(DateComponentsTest, ABirthdayWithoutAYear) {
    ABPerson* one = person(@"Ann", nil);
    ASSERT_TRUE([one setValue:day(0, 2, 29) forProperty:kABBirthdayComponentsProperty]);
    EXPECT_EQ(local([one valueForProperty:kABBirthdayProperty]), "1604-02-29 12:00");
    EXPECT_EQ(words([one valueForProperty:kABBirthdayComponentsProperty]), "none 2 29");
    // A card says it as other programs do.
    NSString* card = [[[NSString alloc] initWithData:[one vCardRepresentation]
                                            encoding:NSUTF8StringEncoding] autorelease];
    EXPECT_NE(text(card).find("BDAY;X-APPLE-OMIT-YEAR=1604"), std::string::npos) << text(card);
}

TEST_F(DateComponentsTest, DaysOfOtherCalendarsBecomeTheGregorianDay) {
    NSDateComponents* parts = day(5740, 1, 1); // Rosh Hashanah
    [parts setCalendar:[[[NSCalendar alloc] initWithCalendarIdentifier:NSHebrewCalendar] autorelease]];
    ABPerson* one = person(@"Ann", nil);
    ASSERT_TRUE([one setValue:parts forProperty:kABBirthdayComponentsProperty]);
    EXPECT_EQ(words([one valueForProperty:kABBirthdayComponentsProperty]), "1979 9 22");
}

TEST_F(DateComponentsTest, RefusesWhatIsNoDay) {
    ABPerson* one = person(@"Ann", nil);
    for (NSDateComponents* parts : {day(1980, 13, 1), day(1980, 1, 32), day(1980, 2, NSIntegerMax)}) {
        NSException* exception =
            raised([&] { [one setValue:parts forProperty:kABBirthdayComponentsProperty]; });
        EXPECT_TRUE([[exception name] isEqual:NSInvalidArgumentException]);
        EXPECT_EQ(text([exception reason]),
                  "The property BirthdayComponents takes date components with a month and a day");
    }
    EXPECT_TRUE(raised([&] { [one setValue:[NSDate date] forProperty:kABBirthdayComponentsProperty]; }));
    EXPECT_EQ([one valueForProperty:kABBirthdayProperty], nil);
}

TEST_F(DateComponentsTest, OtherDatesKeepLabelsIdentifiersAndThePrimaryOne) {
    ABPerson* one = person(@"Ann", nil);
    ABMutableMultiValue* days = [[[ABMutableMultiValue alloc] init] autorelease];
    NSString* wedding = [days addValue:day(2001, 6, 30) withLabel:kABAnniversaryLabel];
    NSString* feast = [days addValue:day(0, 11, 25) withLabel:@"Name day"];
    [days setPrimaryIdentifier:feast];
    ASSERT_TRUE([one setValue:days forProperty:kABOtherDateComponentsProperty]);
    NSString* uid = [one uniqueId];
    reopen();
    ABRecord* same = [book() recordForUniqueId:uid];
    ABMultiValue* dates = [same valueForProperty:kABOtherDatesProperty];
    ASSERT_EQ([dates count], 2u);
    EXPECT_EQ([dates propertyType], kABMultiDateProperty);
    EXPECT_EQ(local([dates valueForIdentifier:wedding]), "2001-06-30 12:00");
    EXPECT_EQ(local([dates valueForIdentifier:feast]), "1604-11-25 12:00");
    ABMultiValue* told = [same valueForProperty:kABOtherDateComponentsProperty];
    EXPECT_EQ([told propertyType], kABMultiDateComponentsProperty);
    EXPECT_EQ(words([told valueAtIndex:1]), "none 11 25");
    EXPECT_TRUE([[told labelAtIndex:1] isEqual:@"Name day"]);
    EXPECT_TRUE([[told identifierAtIndex:0] isEqual:wedding]);
    EXPECT_TRUE([[told primaryIdentifier] isEqual:feast]);

    // One changed by its date shows as components at once.
    ABMutableMultiValue* changed = [[dates mutableCopy] autorelease];
    [changed replaceValueAtIndex:0 withValue:moment("2002-07-01 10:00")];
    ASSERT_TRUE([same setValue:changed forProperty:kABOtherDatesProperty]);
    EXPECT_EQ(words([[same valueForProperty:kABOtherDateComponentsProperty] valueAtIndex:0]), "2002 7 1");
}

TEST_F(DateComponentsTest, TheAlternateBirthdayKeepsItsCalendar) {
    NSDateComponents* parts = day(36, 5, 15);
    [parts setEra:78];
    [parts setLeapMonth:YES];
    [parts setCalendar:[[[NSCalendar alloc] initWithCalendarIdentifier:NSChineseCalendar] autorelease]];
    ABPerson* one = person(@"Ann", nil);
    ASSERT_TRUE([one setValue:parts forProperty:kABAlternateBirthdayComponentsProperty]);
    NSString* uid = [one uniqueId];
    for (const bool fromDisk : {false, true}) {
        if (fromDisk) {
            reopen();
        }
        NSDateComponents* read =
            [[book() recordForUniqueId:uid] valueForProperty:kABAlternateBirthdayComponentsProperty];
        EXPECT_EQ(words(read), "36 5 15");
        EXPECT_EQ([read era], 78);
        EXPECT_TRUE([read leapMonth]);
        EXPECT_TRUE([[[read calendar] calendarIdentifier] isEqual:NSChineseCalendar]);
        EXPECT_EQ([[book() recordForUniqueId:uid] valueForProperty:kABBirthdayProperty], nil);
        EXPECT_EQ(found(kABAlternateBirthdayComponentsProperty, parts, kABEqual),
                  std::vector<std::string>{"Ann"});
        EXPECT_TRUE(found(kABAlternateBirthdayComponentsProperty, day(36, 5, 15), kABEqual).empty());
    }
}

TEST_F(DateComponentsTest, AreSearchedByTheDay) {
    [person(@"Ann", nil) setValue:moment("1980-03-22 08:30") forProperty:kABBirthdayProperty];
    [person(@"Bob", nil) setValue:moment("1980-03-22 23:10") forProperty:kABBirthdayProperty];
    [person(@"Cid", nil) setValue:day(1990, 1, 1) forProperty:kABBirthdayComponentsProperty];
    [person(@"Dan", nil) setValue:day(0, 3, 22) forProperty:kABBirthdayComponentsProperty];
    person(@"Eve", nil);
    using Names = std::vector<std::string>;
    NSString* const birthday = kABBirthdayComponentsProperty;
    for (const bool fromDisk : {false, true}) {
        if (fromDisk) {
            reopen();
        }
        EXPECT_EQ(found(birthday, day(1980, 3, 22), kABEqual), (Names{"Ann", "Bob"}));
        EXPECT_EQ(found(birthday, day(0, 3, 22), kABEqual), Names{"Dan"});
        EXPECT_EQ(found(birthday, day(1980, 3, 22), kABNotEqual), (Names{"Cid", "Dan", "Eve"}));
        EXPECT_EQ(found(birthday, day(1980, 3, 22), kABGreaterThan), Names{"Cid"});
        EXPECT_EQ(found(birthday, day(1980, 3, 22), kABLessThanOrEqual), (Names{"Ann", "Bob"}));
        EXPECT_EQ(found(birthday, nil, kABNotEqual), Names{"Eve"});
        EXPECT_EQ(found(birthday, nil, kABEqual), (Names{"Ann", "Bob", "Cid", "Dan"}));
    }
}

} // namespace
