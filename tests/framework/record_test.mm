#include "tests/framework/support.h"

#include "frameworks/AddressBook/objc/record.h"

#include <cstdlib>

namespace {

class RecordTest : public AddressBookTest {
  protected:
    ABPerson* fresh() { return [[[ABPerson alloc] initWithAddressBook:book()] autorelease]; }
    static NSString* named(NSString* name, int number) {
        return [NSString stringWithFormat:@"%@%d", name, number];
    }
    // Equal; date components have no equality of their own here.
    static bool alike(id one, id other) {
        if (![one isKindOfClass:[NSDateComponents class]] ||
            ![other isKindOfClass:[NSDateComponents class]]) {
            return [one isEqual:other];
        }
        return [one year] == [other year] && [one month] == [other month] && [one day] == [other day] &&
               [one hour] == [other hour] && [one minute] == [other minute] && [one second] == [other second];
    }
    static bool invalid(NSException* exception) {
        return [[exception name] isEqual:NSInvalidArgumentException];
    }
};

TEST_F(RecordTest, HasAUniqueIdFromTheStart) {
    ABPerson* one = fresh();
    ABGroup* group = [[[ABGroup alloc] init] autorelease];
    EXPECT_TRUE([[one uniqueId] hasSuffix:@":ABPerson"]);
    EXPECT_TRUE([[group uniqueId] hasSuffix:@":ABGroup"]);
    EXPECT_EQ([[one uniqueId] length], 36u + 9);
    EXPECT_TRUE([[one uniqueId] isEqual:[one valueForProperty:kABUIDProperty]]);
    EXPECT_FALSE([[one uniqueId] isEqual:[fresh() uniqueId]]);
}

TEST_F(RecordTest, KeepsValuesOfEveryType) {
    NSMutableDictionary* types = [NSMutableDictionary dictionary];
    const int kTypes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const int type : kTypes) {
        [types setObject:[NSNumber numberWithInt:type] forKey:named(@"single", type)];
        [types setObject:[NSNumber numberWithInt:type | kABMultiValueMask] forKey:named(@"multi", type)];
    }
    ASSERT_EQ([ABPerson addPropertiesAndTypes:types], 16);

    NSDateComponents* components = [[[NSDateComponents alloc] init] autorelease];
    [components setMonth:3];
    [components setDay:12];
    NSDictionary* dictionary = [NSDictionary dictionaryWithObjectsAndKeys:@"v", @"k", number(2.5), @"n", nil];
    NSArray* values =
        [NSArray arrayWithObjects:@"t\u00e9xt\U0001F600", [NSNumber numberWithLongLong:-5000000000],
                                  number(2.5), [NSDate dateWithTimeIntervalSinceReferenceDate:-1e9],
                                  [NSArray arrayWithObjects:@"a", dictionary, nil], dictionary,
                                  [NSData dataWithBytes:"\0\xff" length:2], components, nil];
    ABPerson* one = person(@"A", @"B");
    for (const int type : kTypes) {
        id value = [values objectAtIndex:type - 1];
        ABMultiValue* entries = list({{@"l", value}, {@"m", value}});
        EXPECT_TRUE(([one setValue:value forProperty:named(@"single", type)]));
        EXPECT_TRUE(([one setValue:entries forProperty:named(@"multi", type)]));
    }
    NSString* uid = [one uniqueId];
    for (const bool fromDisk : {false, true}) {
        if (fromDisk) {
            reopen();
        }
        ABRecord* same = [book() recordForUniqueId:uid];
        for (const int type : kTypes) {
            id value = [values objectAtIndex:type - 1];
            EXPECT_TRUE(alike([same valueForProperty:named(@"single", type)], value)) << type;
            ABMultiValue* entries = [same valueForProperty:named(@"multi", type)];
            ASSERT_EQ([entries count], 2u) << type;
            EXPECT_TRUE(alike([entries valueAtIndex:1], value)) << type;
            EXPECT_EQ([entries propertyType], type | kABMultiValueMask);
        }
        NSDateComponents* parts = [same valueForProperty:@"single8"];
        EXPECT_EQ([parts month], 3);
        EXPECT_EQ([parts year], NSIntegerMax);
    }
}

TEST_F(RecordTest, KeepsEveryText) {
    const unichar kUnits[] = {'a', 0xD800, 'b', 0xDC00, 0, 0xD83D, 0xDE00, 0xFFFF};
    NSString* zero = [NSString stringWithCharacters:kUnits + 4 length:4];
    NSString* half = [[NSString stringWithUTF8String:"x\U0001F600y"] substringToIndex:2];
    ABPerson* one = person(zero, half);
    NSString* uid = [one uniqueId];
    reopen();
    ABRecord* same = [book() recordForUniqueId:uid];
    NSString* first = [same valueForProperty:kABFirstNameProperty];
    EXPECT_TRUE([first isEqual:zero]);
    NSString* last = [same valueForProperty:kABLastNameProperty];
    ASSERT_EQ([last length], 2u);
    EXPECT_EQ([last characterAtIndex:0], 'x');
    EXPECT_EQ([last characterAtIndex:1], 0xD83D);
    EXPECT_EQ([[last copy] autorelease], last);
}

// GNUstep takes these for byte-order marks when it makes a string of units: it drops the first, and turns
// what follows the second round.
TEST_F(RecordTest, KeepsByteOrderMarksInFront) {
    for (const unichar mark : {unichar(0xFEFF), unichar(0xFFFE)}) {
        NSMutableString* text = [NSMutableString stringWithString:@"?abc"];
        [text replaceCharactersInRange:NSMakeRange(0, 1) withString:[NSString stringWithFormat:@"%C", mark]];
        ASSERT_EQ([text length], 4u);
        ASSERT_EQ([text characterAtIndex:0], mark);
        ABPerson* one = person(text, nil);
        NSString* uid = [one uniqueId];
        reopen();
        NSString* read = [[book() recordForUniqueId:uid] valueForProperty:kABFirstNameProperty];
        ASSERT_EQ([read length], 4u);
        EXPECT_EQ([read characterAtIndex:0], mark);
        EXPECT_EQ([read characterAtIndex:3], 'c');
    }
}

TEST_F(RecordTest, EntriesKeepIdentifierLabelAndPrimary) {
    ABMutableMultiValue* phones = [[[ABMutableMultiValue alloc] init] autorelease];
    NSString* home = [phones addValue:@"1" withLabel:kABHomeLabel];
    NSString* cottage = [phones addValue:@"2" withLabel:@"Cottage"];
    [phones setPrimaryIdentifier:cottage];
    ABPerson* one = person(@"A", @"B");
    ASSERT_TRUE([one setValue:phones forProperty:kABPhoneProperty]);
    NSString* uid = [one uniqueId];
    reopen();
    ABMultiValue* read = [[book() recordForUniqueId:uid] valueForProperty:kABPhoneProperty];
    EXPECT_EQ([read indexForIdentifier:home], 0u);
    EXPECT_EQ(text([read labelForIdentifier:cottage]), "Cottage");
    EXPECT_TRUE([[read primaryIdentifier] isEqual:cottage]);
    EXPECT_FALSE([read isKindOfClass:[ABMutableMultiValue class]]);
}

TEST_F(RecordTest, AnswersDoNotChangeTheRecord) {
    ABPerson* one = person(@"A", @"B");
    NSMutableString* name = [NSMutableString stringWithString:@"before"];
    ABMutableMultiValue* phones = [[list({{@"l", @"1"}}) mutableCopy] autorelease];
    [one setValue:name forProperty:kABFirstNameProperty];
    [one setValue:phones forProperty:kABPhoneProperty];
    [name setString:@"after"];
    [phones addValue:@"2" withLabel:@"m"];
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "before");
    EXPECT_EQ([[one valueForProperty:kABPhoneProperty] count], 1u);
}

TEST_F(RecordTest, RaisesForValuesOfTheWrongType) {
    ABPerson* one = person(@"A", @"B");
    const auto setting = [&](id value, NSString* property) {
        return raised([&] { [one setValue:value forProperty:property]; });
    };
    EXPECT_TRUE(invalid(setting(number(1), kABFirstNameProperty)));
    EXPECT_TRUE(invalid(setting(@"x", kABBirthdayProperty)));
    EXPECT_TRUE(invalid(setting(@"1", kABPersonFlags)));
    EXPECT_TRUE(invalid(setting(@"x", kABPhoneProperty)));
    EXPECT_TRUE(invalid(setting(list({{@"l", @"x"}}), kABNoteProperty)));
    EXPECT_TRUE(invalid(setting(list({{@"l", number(1)}}), kABPhoneProperty)));
    EXPECT_TRUE(invalid(setting(list({{@"l", @"1"}, {@"l", number(1)}}), kABPhoneProperty)));
    EXPECT_TRUE(invalid(setting([NSNull null], kABNoteProperty)));
    EXPECT_TRUE(invalid(setting([[[NSObject alloc] init] autorelease], kABNoteProperty)));
    EXPECT_TRUE(invalid(setting(@"x", nil)));
    EXPECT_TRUE(invalid(raised([&] { [one valueForProperty:nil]; })));
    EXPECT_EQ(text(setting(@"x", kABBirthdayProperty)), "The property Birthday takes a date");
    EXPECT_EQ(text(setting(@"x", kABPhoneProperty)),
              "The property Phone takes a multi-value of which each entry is text");
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "A");
    EXPECT_EQ([one valueForProperty:kABPhoneProperty], nil);
}

TEST_F(RecordTest, TakesNumbersAsThePropertyHoldsThem) {
    ASSERT_EQ([ABPerson addPropertiesAndTypes:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:3]
                                                                          forKey:@"Height"]],
              1);
    ABPerson* one = person(@"A", @"B");
    [one setValue:[NSNumber numberWithInt:2] forProperty:@"Height"];
    [one setValue:number(17.9) forProperty:kABPersonFlags];
    EXPECT_EQ([[one valueForProperty:@"Height"] doubleValue], 2.0);
    EXPECT_EQ(text([one valueForProperty:kABPersonFlags]), "17");
}

TEST_F(RecordTest, RefusesWhatIsNotItsToSet) {
    ABPerson* one = person(@"A", @"B");
    NSString* uid = [one uniqueId];
    for (NSString* property : {kABUIDProperty, kABCreationDateProperty, kABModificationDateProperty}) {
        NSError* error = nil;
        EXPECT_FALSE([one setValue:@"x" forProperty:property error:&error]);
        EXPECT_EQ([error code], ABPropertyReadOnlyError);
        EXPECT_TRUE([[error domain] isEqual:ABAddressBookErrorDomain]);
        EXPECT_FALSE([one removeValueForProperty:property]);
    }
    EXPECT_TRUE([[one uniqueId] isEqual:uid]);
    NSError* error = nil;
    EXPECT_FALSE([one setValue:@"x" forProperty:kABGroupNameProperty error:&error]);
    EXPECT_EQ([error code], ABPropertyUnsupportedBySourceError);
    EXPECT_FALSE([one setValue:@"x" forProperty:@"nonsense"]);
    EXPECT_FALSE([one setValue:@"x" forProperty:@".Image"]);
    EXPECT_EQ([one valueForProperty:@"nonsense"], nil);
    EXPECT_EQ([one valueForProperty:kABGroupNameProperty], nil);
}

TEST_F(RecordTest, RemovesValues) {
    ABPerson* one = person(@"A", @"B");
    ASSERT_TRUE([book() save]);
    EXPECT_TRUE([one removeValueForProperty:kABFirstNameProperty]);
    EXPECT_TRUE([one removeValueForProperty:kABNicknameProperty]);
    EXPECT_TRUE([one setValue:nil forProperty:kABLastNameProperty]);
    EXPECT_EQ([one valueForProperty:kABFirstNameProperty], nil);
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ([[book() recordForUniqueId:uid] valueForProperty:kABFirstNameProperty], nil);
    EXPECT_EQ([[book() recordForUniqueId:uid] valueForProperty:kABLastNameProperty], nil);
}

TEST_F(RecordTest, AnEmptyMultiValueIsNone) {
    ABPerson* one = person(@"A", @"B");
    [one setValue:list({{@"l", @"1"}}) forProperty:kABPhoneProperty];
    ASSERT_TRUE([book() save]);
    EXPECT_TRUE([one setValue:list({}) forProperty:kABPhoneProperty]);
    EXPECT_EQ([one valueForProperty:kABPhoneProperty], nil);
    EXPECT_TRUE([book() save]);
    EXPECT_EQ([one valueForProperty:kABPhoneProperty], nil);
}

TEST_F(RecordTest, KeepsCreationAndModificationDates) {
    NSDate* before = [NSDate date];
    ABPerson* one = person(@"A", @"B");
    NSDate* created = [one valueForProperty:kABCreationDateProperty];
    EXPECT_GE([created timeIntervalSinceDate:before], -1);
    EXPECT_LE([created timeIntervalSinceNow], 1);
    EXPECT_NE([one valueForProperty:kABModificationDateProperty], nil);
    NSString* uid = [one uniqueId];
    reopen();
    ABRecord* same = [book() recordForUniqueId:uid];
    EXPECT_NEAR([[same valueForProperty:kABCreationDateProperty] timeIntervalSinceDate:created], 0, 0.01);
    NSDate* modified = [same valueForProperty:kABModificationDateProperty];
    [NSThread sleepForTimeInterval:0.05];
    [same setValue:@"C" forProperty:kABFirstNameProperty];
    ASSERT_TRUE([book() save]);
    EXPECT_GT([[same valueForProperty:kABModificationDateProperty] timeIntervalSinceDate:modified], 0.04);
    EXPECT_NEAR([[same valueForProperty:kABCreationDateProperty] timeIntervalSinceDate:created], 0, 0.01);
}

TEST_F(RecordTest, KeepsThePictureByteForByte) {
    ABPerson* one = person(@"A", @"B");
    EXPECT_EQ([one imageData], nil);
    NSData* picture = [NSData dataWithBytes:"\x89PNG\0\xff" length:6];
    EXPECT_TRUE([one setImageData:picture]);
    EXPECT_TRUE([[one imageData] isEqual:picture]);
    NSString* uid = [one uniqueId];
    reopen();
    ABPerson* same = (ABPerson*)[book() recordForUniqueId:uid];
    EXPECT_TRUE([[same imageData] isEqual:picture]);
    EXPECT_TRUE([same setImageData:nil]);
    EXPECT_EQ([same imageData], nil);
    reopen();
    EXPECT_EQ([(ABPerson*)[book() recordForUniqueId:uid] imageData], nil);
}

TEST_F(RecordTest, HasANameToShow) {
    ABPerson* one = fresh();
    EXPECT_EQ(text([one displayName]), "");
    [one setValue:list({{@"l", @"555"}}) forProperty:kABPhoneProperty];
    EXPECT_EQ(text([one displayName]), "555");
    [one setValue:@"Acme" forProperty:kABOrganizationProperty];
    EXPECT_EQ(text([one displayName]), "Acme");
    [one setValue:@"Ann" forProperty:kABFirstNameProperty];
    [one setValue:@"Lee" forProperty:kABLastNameProperty];
    EXPECT_EQ(text([one displayName]), "Ann Lee");
    [one setValue:[NSNumber numberWithInt:kABLastNameFirst] forProperty:kABPersonFlags];
    EXPECT_EQ(text([one displayName]), "Lee Ann");
    [one setValue:[NSNumber numberWithInt:kABShowAsCompany] forProperty:kABPersonFlags];
    EXPECT_EQ(text([one displayName]), "Acme");
    EXPECT_EQ(text([group(@"Friends") displayName]), "Friends");
}

TEST_F(RecordTest, IsLinkedToItself) {
    ABPerson* one = person(@"A", @"B");
    EXPECT_EQ([[one linkedPeople] count], 1u);
    EXPECT_EQ([[one linkedPeople] objectAtIndex:0], one);
}

TEST_F(RecordTest, BelongsToASharedAddressBookThatOpens) {
    [ABAddressBook closeSharedAddressBook];
    ::setenv("ADDRESSBOOK_HOME", (folder_ / "nowhere" / "at all").c_str(), 1);
    EXPECT_EQ([ABAddressBook sharedAddressBook], nil);
    EXPECT_EQ([ABAddressBook addressBook], nil);
    EXPECT_EQ([[ABPerson alloc] init], nil);
    EXPECT_EQ([ABPerson typeOfProperty:kABFirstNameProperty], kABStringProperty);
    EXPECT_EQ([ABPerson typeOfProperty:@"nonsense"], kABErrorInProperty);
    EXPECT_TRUE([[ABPerson properties] containsObject:kABFirstNameProperty]);
    EXPECT_EQ([ABPerson addPropertiesAndTypes:[NSDictionary dictionary]], -1);
    EXPECT_EQ([ABPerson removeProperties:[NSArray array]], -1);
}

} // namespace
