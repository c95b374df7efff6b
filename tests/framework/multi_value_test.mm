#include "tests/framework/support.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

ABMutableMultiValue* phones() {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    [list addValue:@"1" withLabel:kABHomeLabel];
    [list addValue:@"2" withLabel:kABWorkLabel];
    return list;
}

TEST(MultiValueTest, GivesEachEntryAnIdentifierOfItsOwn) {
    ABMutableMultiValue* list = phones();
    NSString* added = [list addValue:@"3" withLabel:@"Cottage"];
    EXPECT_EQ([added length], 36u);
    EXPECT_EQ([list count], 3u);
    EXPECT_EQ([list indexForIdentifier:added], 2u);
    EXPECT_EQ(text([list valueForIdentifier:added]), "3");
    EXPECT_EQ(text([list labelForIdentifier:added]), "Cottage");
    EXPECT_FALSE([[list identifierAtIndex:0] isEqual:[list identifierAtIndex:1]]);
}

TEST(MultiValueTest, AnswersNothingForUnknownIdentifiers) {
    ABMutableMultiValue* list = phones();
    EXPECT_EQ([list indexForIdentifier:@"?"], static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ([list indexForIdentifier:nil], static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ([list valueForIdentifier:@"?"], nil);
    EXPECT_EQ([list labelForIdentifier:@"?"], nil);
    EXPECT_FALSE([list setPrimaryIdentifier:@"?"]);
}

TEST(MultiValueTest, RaisesOutOfBounds) {
    ABMutableMultiValue* list = phones();
    const auto outOfBounds = [](NSException* exception) {
        return [[exception name] isEqual:NSRangeException];
    };
    EXPECT_TRUE(outOfBounds(raised([&] { [list valueAtIndex:2]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list labelAtIndex:2]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list identifierAtIndex:NSNotFound]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list removeValueAndLabelAtIndex:2]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list replaceValueAtIndex:2 withValue:@"x"]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list replaceLabelAtIndex:2 withLabel:@"x"]; })));
    EXPECT_TRUE(outOfBounds(raised([&] { [list insertValue:@"x" withLabel:@"y" atIndex:3]; })));
    EXPECT_EQ(text(raised([&] { [list valueAtIndex:2]; })), "There is no entry 2: the list has 2");
}

TEST(MultiValueTest, RaisesForNil) {
    ABMutableMultiValue* list = phones();
    EXPECT_TRUE(raisesInvalidArgument([&] { [list addValue:nil withLabel:@"x"]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list addValue:@"x" withLabel:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list insertValue:nil withLabel:@"x" atIndex:0]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list insertValue:@"x" withLabel:nil atIndex:0]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list replaceValueAtIndex:0 withValue:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list replaceLabelAtIndex:0 withLabel:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [list setPrimaryIdentifier:nil]; }));
    EXPECT_EQ(text([list valueAtIndex:0]) + text([list labelAtIndex:0]), "1" + text(kABHomeLabel));
    EXPECT_EQ([list count], 2u);
}

TEST(MultiValueTest, ChangesEntriesInPlace) {
    ABMutableMultiValue* list = phones();
    NSString* first = [list identifierAtIndex:0];
    EXPECT_TRUE([list replaceValueAtIndex:0 withValue:@"one"]);
    EXPECT_TRUE([list replaceLabelAtIndex:0 withLabel:@"first"]);
    NSString* inserted = [list insertValue:@"0" withLabel:@"zero" atIndex:0];
    EXPECT_EQ([list indexForIdentifier:inserted], 0u);
    EXPECT_EQ([list indexForIdentifier:first], 1u);
    EXPECT_EQ(text([list valueAtIndex:1]), "one");
    EXPECT_EQ(text([list labelAtIndex:1]), "first");
    EXPECT_TRUE([list removeValueAndLabelAtIndex:0]);
    EXPECT_EQ([list indexForIdentifier:inserted], static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ([list count], 2u);
}

TEST(MultiValueTest, HasTheFirstEntryAsPrimaryUntilAnotherIsChosen) {
    ABMutableMultiValue* list = phones();
    EXPECT_EQ([[[[ABMultiValue alloc] init] autorelease] primaryIdentifier], nil);
    EXPECT_EQ([list primaryIdentifier], [list identifierAtIndex:0]);
    EXPECT_TRUE([list setPrimaryIdentifier:[list identifierAtIndex:1]]);
    EXPECT_TRUE([[list primaryIdentifier] isEqual:[list identifierAtIndex:1]]);
    [list removeValueAndLabelAtIndex:1];
    EXPECT_EQ([list primaryIdentifier], [list identifierAtIndex:0]);
}

TEST(MultiValueTest, KnowsTheTypeOfItsEntries) {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    EXPECT_EQ([list propertyType], kABErrorInProperty);
    [list addValue:@"x" withLabel:@"l"];
    EXPECT_EQ([list propertyType], kABMultiStringProperty);
    [list addValue:[NSDate date] withLabel:@"l"];
    EXPECT_EQ([list propertyType], kABErrorInProperty);
    [list removeValueAndLabelAtIndex:0];
    EXPECT_EQ([list propertyType], kABMultiDateProperty);
    [list replaceValueAtIndex:0 withValue:[NSDictionary dictionary]];
    EXPECT_EQ([list propertyType], kABMultiDictionaryProperty);
}

TEST(MultiValueTest, CopiesKeepIdentifiersAndGoTheirOwnWay) {
    ABMutableMultiValue* list = phones();
    [list setPrimaryIdentifier:[list identifierAtIndex:1]];
    ABMultiValue* copy = [[list copy] autorelease];
    ABMutableMultiValue* mutableCopy = [[copy mutableCopy] autorelease];
    EXPECT_FALSE([copy isKindOfClass:[ABMutableMultiValue class]]);
    EXPECT_TRUE([mutableCopy isKindOfClass:[ABMutableMultiValue class]]);
    EXPECT_TRUE([copy isEqual:list]);
    EXPECT_TRUE([[mutableCopy primaryIdentifier] isEqual:[list identifierAtIndex:1]]);
    [mutableCopy addValue:@"3" withLabel:@"x"];
    [list removeValueAndLabelAtIndex:0];
    EXPECT_EQ([copy count], 2u);
    EXPECT_EQ([list count], 1u);
    EXPECT_EQ([mutableCopy count], 3u);
    EXPECT_EQ([copy copy], copy);
    [copy release];
}

TEST(MultiValueTest, KeepsWhatItWasGivenEvenWhenTheGiverChangesIt) {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    NSMutableString* value = [NSMutableString stringWithString:@"before"];
    [list addValue:value withLabel:value];
    [value setString:@"after"];
    EXPECT_EQ(text([list valueAtIndex:0]), "before");
    EXPECT_EQ(text([list labelAtIndex:0]), "before");
}

TEST(MultiValueTest, IsWalkedValueByValue) {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    for (int i = 0; i < 40; ++i) {
        [list addValue:[NSNumber numberWithInt:i] withLabel:@"n"];
    }
    NSFastEnumerationState state{};
    id buffer[16];
    int expected = 0;
    const unsigned long* mutations = nullptr;
    while (const NSUInteger given = [list countByEnumeratingWithState:&state objects:buffer count:16]) {
        for (NSUInteger i = 0; i < given; ++i) {
            EXPECT_EQ([state.itemsPtr[i] intValue], expected++);
        }
        mutations = state.mutationsPtr;
    }
    EXPECT_EQ(expected, 40);
    const unsigned long before = *mutations;
    [list removeValueAndLabelAtIndex:0];
    EXPECT_NE(*mutations, before);
}

// Lists as they are read from a saved record: their parts are made when they are asked for.
class StoredListTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        [person(@"Ada", nil) setValue:phones() forProperty:kABPhoneProperty];
        reopen();
    }
    ABPerson* ada() { return [[book() people] objectAtIndex:0]; }
    ABMultiValue* stored() { return [ada() valueForProperty:kABPhoneProperty]; }
};

TEST_F(StoredListTest, AnswersTheSameObjectsAgain) {
    ABMultiValue* list = stored();
    EXPECT_EQ([list valueAtIndex:1], [list valueAtIndex:1]);
    EXPECT_EQ([list identifierAtIndex:1], [list identifierAtIndex:1]);
    EXPECT_EQ(text([list valueAtIndex:1]), "2");
    EXPECT_EQ(text([list labelAtIndex:1]), text(kABWorkLabel));
}

TEST_F(StoredListTest, FindsIdentifiersThatNobodyHasAskedFor) {
    NSString* second = [[[stored() identifierAtIndex:1] mutableCopy] autorelease];
    reopen();
    EXPECT_EQ([stored() indexForIdentifier:second], 1u);
    EXPECT_EQ([stored() indexForIdentifier:[second lowercaseString]], static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ([stored() indexForIdentifier:@""], static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ(text([stored() valueForIdentifier:second]), "2");
}

TEST_F(StoredListTest, StaysAsItWasReadAndOutlivesItsRecord) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    ABMutableMultiValue* copy = [stored() mutableCopy];
    [ada() setValue:list({{kABHomeLabel, @"9"}}) forProperty:kABPhoneProperty];
    reopen();
    [copy addValue:@"3" withLabel:@"Cottage"];
    ABMultiValue* second = [copy copy];
    [copy release];
    [pool release];
    EXPECT_EQ(text([second valueAtIndex:0]), "1");
    EXPECT_EQ(text([second labelAtIndex:2]), "Cottage");
    EXPECT_EQ(text([second primaryIdentifier]), text([second identifierAtIndex:0]));
    EXPECT_EQ(text([stored() valueAtIndex:0]), "9");
    [second release];
}

TEST_F(StoredListTest, EveryChangeStaysInItsList) {
    const auto shown = [](ABMultiValue* list) { return text(list) + text([list primaryIdentifier]); };
    ABMultiValue* original = stored();
    const std::string before = shown(original);
    using Change = void (*)(ABMutableMultiValue*);
    const Change changes[] = {
        [](ABMutableMultiValue* list) { [list addValue:@"3" withLabel:@"Cottage"]; },
        [](ABMutableMultiValue* list) { [list insertValue:@"0" withLabel:@"Cottage" atIndex:0]; },
        [](ABMutableMultiValue* list) { [list replaceValueAtIndex:1 withValue:@"9"]; },
        [](ABMutableMultiValue* list) { [list replaceLabelAtIndex:1 withLabel:@"Cottage"]; },
        [](ABMutableMultiValue* list) { [list removeValueAndLabelAtIndex:0]; },
        [](ABMutableMultiValue* list) { [list setPrimaryIdentifier:[list identifierAtIndex:1]]; },
    };
    for (const Change change : changes) {
        ABMutableMultiValue* first = [[original mutableCopy] autorelease];
        ABMutableMultiValue* second = [[first mutableCopy] autorelease];
        ABMultiValue* fixed = [[first copy] autorelease];
        change(first);
        EXPECT_NE(shown(first), before);
        EXPECT_EQ(shown(second), before);
        EXPECT_EQ(shown(fixed), before);
        change(second);
        EXPECT_NE(shown(second), before);
        EXPECT_EQ(shown(original), before);
    }
}

// Lists that share their entries until one is changed make the parts of these when they are asked for, once for all.
TEST_F(StoredListTest, ThreadsMayReadCopies) {
    for (int round = 0; round < 200; ++round) {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        ABMultiValue* original = [[[stored() mutableCopy] autorelease] copy];
        std::atomic<int> ready{0};
        struct Seen {
            std::vector<id> objects;
            std::string text;
            bool operator==(const Seen&) const = default;
        };
        const auto read = [&ready](ABMultiValue* copy, Seen& seen) {
            GSRegisterCurrentThread();
            NSAutoreleasePool* own = [[NSAutoreleasePool alloc] init];
            for (++ready; ready < 2;) {
            }
            for (NSUInteger i = 0; i < [copy count]; ++i) {
                for (id part : {static_cast<id>([copy identifierAtIndex:i]),
                                static_cast<id>([copy labelAtIndex:i]), [copy valueAtIndex:i]}) {
                    seen.objects.push_back(part);
                    seen.text += text(part);
                }
            }
            [copy release];
            [own release];
            GSUnregisterCurrentThread();
        };
        Seen seen[2];
        std::thread one(read, [original mutableCopy], std::ref(seen[0]));
        std::thread other(read, [original mutableCopy], std::ref(seen[1]));
        one.join();
        other.join();
        EXPECT_EQ(seen[0].objects.size(), 6U);
        EXPECT_TRUE(seen[0] == seen[1]);
        [original release];
        [pool release];
    }
}

} // namespace
