#import "plugin/properties/multi_value_cursor.h"

#include "tests/plugin/entries_fixture.h"

namespace {

class WalkTest : public EntriesTest {
  protected:
    void SetUp() override {
        EntriesTest::SetUp();
        state.g_currentRecordType = kPersonType;
    }
    static std::string first(const std::string& name) { return call(Do_KORU_OpenFirstMVProperty, {name}); }
    static std::string next() { return call(Do_KORU_OpenNextMVProperty); }
    static std::string entry(NSUInteger index) { return utf8([state.gValues.get() identifierAtIndex:index]); }
};

TEST_F(WalkTest, TheIndexIsThatOfTheNextEntry) {
    giveList({@"one", @"two"});
    state.gCurrentValuesIndex = 7;
    const std::string id = first("phone");
    EXPECT_EQ(id, entry(0));
    EXPECT_EQ(state.gCurrentValuesIndex, 1U);
    EXPECT_EQ(next(), entry(1));
    EXPECT_EQ(state.gCurrentValuesIndex, 2U);
    EXPECT_EQ(next(), "END");
    EXPECT_EQ(next(), "END");
    EXPECT_EQ(state.gCurrentValuesIndex, 2U) << "it stays at the end";
    EXPECT_EQ(openProperty(), "Phone");
}

// On purpose: only opening a first entry sets the index back; opening another property does not, nor opening
// a first entry that fails or finds no value.
TEST_F(WalkTest, TheIndexIsNotSetBack) {
    giveList({@"one", @"two", @"three"});
    first("phone");
    next();
    EXPECT_EQ(call(Do_KORU_CompareProperty, {"e-mail", "one", "0"}), "0");
    EXPECT_EQ(state.gCurrentValuesIndex, 2U);
    EXPECT_EQ(openProperty(), "Email");
    EXPECT_EQ(next(), entry(2));
    EXPECT_EQ(first("firstname"), "!!ERROR!!");
    EXPECT_EQ(first("shoe size"), "!!ERROR!!");
    EXPECT_EQ(first("name"), "!!ERROR!!");
    personDouble.values.reset();
    EXPECT_EQ(first("phone"), "END");
    EXPECT_EQ(state.gCurrentValuesIndex, 3U);
}

TEST_F(WalkTest, WhatIsOpenDecidesWhatNextAnswers) {
    giveList({@"one", @"two"});
    expectFailure(next(), "Function call order is invalid ", "-8004");
    first("phone");
    state.g_currentRecordType = kGroupType;
    state.g_group.reset();
    state.g_person.reset();
    EXPECT_EQ(next(), entry(1)) << "neither the record nor its type matters any more";
    state.gCurrentProperty.reset();
    EXPECT_TRUE(state.gValues);
    expectFailure(next(), "Function call order is invalid ", "-8004");
}

TEST_F(WalkTest, AFailedFirstOpensTheProperty) {
    giveList({@"one", @"two"});
    first("phone");
    expectFailure(first("firstname"), "Invalid property type Property may be a single-value property.",
                  "-8006");
    EXPECT_EQ(openProperty(), "First");
    EXPECT_FALSE(state.gValues);
    EXPECT_EQ(next(), "END");
    first("phone");
    expectFailure(first("shoe size"), "Invalid property name ", "-8010");
    EXPECT_EQ(openProperty(), "Phone");
    EXPECT_EQ(next(), entry(1));
    expectFailure(first("name"), "Error in property ", "-8011");
    EXPECT_EQ(openProperty(), "GroupName");
    EXPECT_EQ(next(), "END");
}

// The first entry is asked for without counting.
TEST_F(WalkTest, AListWithoutEntriesRaises) {
    giveList({});
    EXPECT_EQ(first("phone"), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8000");
    EXPECT_EQ(state.gCurrentValuesIndex, 1U);
    EXPECT_EQ(next(), "END");
}

TEST_F(WalkTest, AnExceptionOfReadingIsTheWalks) {
    personDouble.failsReading = true;
    expectFailure(first("phone"), "Exception caught in function cannot read Phone", "-8000");
    EXPECT_EQ(openProperty(), "Phone");
    EXPECT_EQ(next(), "END");
}

TEST_F(WalkTest, TheTypeIsSetBeforeARecordIsAskedFor) {
    state.g_group.reset();
    EXPECT_EQ(call(Do_KORU_OpenFirstMVProperty, {"phone", "group"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8003");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(openProperty(), "(nil)");
    EXPECT_EQ(call(Do_KORU_OpenFirstMVProperty, {"phone", "contact"}), "END");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(WalkTest, TheWalkGoesThroughACopy) {
    giveList({@"one", @"two"});
    first("phone");
    giveList({});
    EXPECT_EQ(next(), entry(1));
    EXPECT_EQ(next(), "END");
}

} // namespace
