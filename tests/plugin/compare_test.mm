#import "plugin/properties/compare.h"

#include "tests/plugin/entries_fixture.h"

namespace {

class CompareTest : public EntriesTest {
  protected:
    void SetUp() override {
        EntriesTest::SetUp();
        state.g_currentRecordType = kPersonType;
    }
    static std::string compare(const std::string& name, const std::string& text, const std::string& id = "",
                               const std::string& key = "") {
        return call(Do_KORU_CompareProperty, {name, text, id, key});
    }
    static void set(NSString* property, id value) {
        ASSERT_TRUE([state.g_person.get() setValue:value forProperty:property]);
    }
};

TEST_F(CompareTest, DatesAreEqualToTheFractionOfASecond) {
    NSDate* date = [NSDate dateWithNaturalLanguageString:@"25 December 2010"];
    set(kABBirthdayProperty, date);
    EXPECT_EQ(compare("birthday", "25 December 2010"), "0");
    set(kABBirthdayProperty, [date dateByAddingTimeInterval:0.25]);
    EXPECT_EQ(compare("birthday", "25 December 2010"), "-1");
    giveList({date, [date dateByAddingTimeInterval:0.25]});
    EXPECT_EQ(compare("dates", "25 December 2010", "0"), "0");
    EXPECT_EQ(compare("dates", "25 December 2010", "1"), "-1");
}

TEST_F(CompareTest, TextsAreComparedLetterByLetterAndDatesOfOtherPropertiesAreTexts) {
    set(kABNoteProperty, @"25 December 2010");
    EXPECT_EQ(compare("note", "25 December 2010"), "0");
    EXPECT_EQ(compare("note", "25 december 2010"), "-1");
    EXPECT_EQ(compare("note", "December 25, 2010"), "-1");
}

TEST_F(CompareTest, ItOnlyReads) {
    personDouble.readOnly = true;
    giveList({@"one"});
    state.gCurrentValuesIndex = 1;
    EXPECT_EQ(compare("phone", "one", "0"), "0");
    EXPECT_EQ(compare("phone", "two", "0"), "-1");
    EXPECT_EQ(personDouble.writes, 0);
    EXPECT_EQ(state.gCurrentValuesIndex, 1U);
    EXPECT_EQ(openProperty(), "Phone") << "and leaves the property open";
    EXPECT_TRUE(state.gValues);
}

TEST_F(CompareTest, TheRecordTypeStays) {
    state.g_currentRecordType = kGroupType;
    [state.g_group.get() setValue:@"Crew" forProperty:kABGroupNameProperty];
    EXPECT_EQ(compare("name", "Crew"), "0");
    expectFailure(compare("phone", "x"), "Error in property ", "-8011");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    state.g_group.reset();
    expectFailure(compare("shoe size", "x"), "No active record in context ", "-8003");
}

TEST_F(CompareTest, ExceptionsFailTheCall) {
    giveList({@"one"});
    EXPECT_EQ(compare("phone", "one", "0"), "0");
    listDouble.failsReading = true;
    expectFailure(compare("phone", "one", "0"), "Exception caught in function no entry", "-8000");
    personDouble.failsReading = true;
    expectFailure(compare("phone", "one", "0"), "Exception caught in function cannot read Phone", "-8000");
    expectFailure(compare("note", ""), "Exception caught in function cannot read Note", "-8000");
}

TEST_F(CompareTest, OneAddressAloneNeedsAKey) {
    personDouble.values = Retained<NSObject>::retain([NSDictionary dictionaryWithObject:@"Bath"
                                                                                 forKey:kABAddressCityKey]);
    const EveryPropertyHasType<kABDictionaryProperty> type;
    expectFailure(compare("note", "Bath"), "Invalid value for key ", "-8008");
    expectFailure(compare("note", ""), "Invalid value for key ", "-8008");
    expectFailure(compare("note", "Bath", "", "Postcode"), "Invalid value for key ", "-8008");
    EXPECT_EQ(compare("note", "Bath", "", "City"), "0");
    EXPECT_EQ(compare("note", "", "", "Street"), "0");
}

// The value found before an exception is not compared any more.
TEST_F(CompareTest, AnExceptionEndsTheComparison) {
    personDouble.values = Retained<NSObject>::adopt([[VelocardFailingAddress alloc] init]);
    expectFailure(compare("note", "Bath", "", "City"), "Exception caught in function cannot read City",
                  "-8000");
}

} // namespace
