#import "plugin/properties/entries.h"

#include "tests/plugin/entries_fixture.h"

namespace {

std::string getValue(const std::string& name, const std::string& id, const std::string& key = "") {
    return call(Do_KORU_GetValueForUID, {name, id, key});
}
std::string setValue(const std::string& name, const std::string& id, const std::string& value,
                     const std::string& key = "") {
    return call(Do_KORU_SetValueForUID, {name, id, value, key});
}
std::string deleteValue(const std::string& name, const std::string& id, const std::string& key = "") {
    return call(Do_KORU_DeleteValueForUID, {name, id, key});
}
std::string getLabel(const std::string& name, const std::string& id) {
    return call(Do_KORU_GetLabelForUID, {name, id});
}
std::string setLabel(const std::string& name, const std::string& id, const std::string& label) {
    return call(Do_KORU_SetLabelForUID, {name, id, label});
}

NSDictionary* address() {
    return [NSDictionary
        dictionaryWithObjectsAndKeys:@"Bath", kABAddressCityKey, @"us", kABAddressCountryCodeKey, nil];
}

TEST_F(EntriesTest, AReadOnlyPersonCanBeReadAndNotChanged) {
    giveList({@"one"});
    personDouble.readOnly = true;
    const std::string text = "Record is read only ";
    // Before the identifier and the name are looked at.
    expectFailure(setValue("shoe size", "", "x"), text, "-8017");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_currentRecordType = kGroupType;
    expectFailure(deleteValue("shoe size", ""), text, "-8017");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_currentRecordType = kGroupType;
    expectFailure(setLabel("shoe size", "", "x"), text, "-8017");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(openProperty(), "(nil)");
    EXPECT_EQ(getValue("phone", "0"), "one");
    EXPECT_EQ(getLabel("phone", "0"), "Cottage");
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(EntriesTest, AReadOnlyGroupDoesNotMatter) {
    giveList({@"one"});
    const auto yes = +[](id, SEL) -> BOOL { return YES; };
    const ReplacedMethod readOnly([ABGroup class], @selector(isReadOnly), yes);
    EXPECT_EQ(setValue("phone", "0", "x"), "0");
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(setLabel("phone", "0", "x"), "0");
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(deleteValue("phone", "0"), "0");
}

TEST_F(EntriesTest, TheListIsWrittenBackWhole) {
    giveList({@"one", @"two", @"three"});
    EXPECT_EQ(setValue("phone", "1", "zwei"), "0");
    EXPECT_EQ(written(0) + written(1) + written(2), "onezweithree");
    EXPECT_EQ(openProperty(), "Phone");
    EXPECT_EQ([state.gValues.get() count], 3U);
    EXPECT_EQ(setLabel("Phone", "2", "home"), "0");
    ABMultiValue* labelled = personDouble.taken.get();
    EXPECT_EQ(utf8([labelled labelAtIndex:1]), "Cottage");
    EXPECT_EQ(utf8([labelled labelAtIndex:2]), utf8(kABHomeLabel));
    EXPECT_EQ(deleteValue("phone", "0"), "0");
    EXPECT_EQ(written(0) + written(1), "twothree");
    EXPECT_EQ([state.gValues.get() count], 2U);
    EXPECT_EQ(personDouble.writes, 3);
}

TEST_F(EntriesTest, ReadingLeavesThePropertyOpenAndTheWalkInPlace) {
    giveList({@"one", @"two"});
    state.gCurrentValuesIndex = 1;
    state.g_lastSearchType = kGroupType;
    EXPECT_EQ(getValue("e-mail", "0"), "one");
    EXPECT_EQ(openProperty(), "Email");
    EXPECT_EQ(getLabel("phone", "1"), "Cottage");
    EXPECT_EQ(openProperty(), "Phone");
    EXPECT_EQ(setValue("address", "0", "x", "City"), "!!ERROR!!");
    EXPECT_EQ(openProperty(), "Address");
    EXPECT_EQ(setValue("shoe size", "0", "x"), "!!ERROR!!");
    EXPECT_EQ(openProperty(), "Address");
    EXPECT_TRUE(state.gValues);
    EXPECT_EQ(setValue("name", "0", "x"), "!!ERROR!!");
    EXPECT_EQ(openProperty(), "GroupName");
    EXPECT_FALSE(state.gValues);
    EXPECT_EQ(state.gCurrentValuesIndex, 1U);
    EXPECT_EQ(state.g_lastSearchType, kGroupType) << "only the current type is made people's";
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(EntriesTest, ANumberIsTheTextsWholeNumber) {
    giveList({[NSNumber numberWithInt:0]});
    const EveryPropertyHasType<kABMultiIntegerProperty> type;
    const std::pair<const char*, const char*> numbers[] = {
        {"12", "12"}, {"-3.9", "-3"}, {"7 boats", "7"}, {"boats", "0"}, {"", "0"}};
    for (const auto& [text, stored] : numbers) {
        EXPECT_EQ(setValue("phone", "0", text), "0");
        EXPECT_EQ(written(0), stored) << text;
    }
}

// On purpose: a single value and a new entry lose it.
TEST_F(EntriesTest, ARealNumberKeepsItsFraction) {
    giveList({[NSNumber numberWithInt:0]});
    const EveryPropertyHasType<kABMultiRealProperty> type;
    const std::pair<const char*, const char*> numbers[] = {
        {"2.75", "2.75"}, {"-0.5", "-0.5"}, {"boats", "0"}};
    for (const auto& [text, stored] : numbers) {
        EXPECT_EQ(setValue("phone", "0", text), "0");
        EXPECT_EQ(written(0), stored) << text;
    }
    EXPECT_EQ(setValue("phone", "0", "16777217"), "0");
    EXPECT_EQ([[personDouble.taken.get() valueAtIndex:0] doubleValue], 16777216) << "of single precision";
}

// The date bit alone makes no date here, unlike for a single value.
TEST_F(EntriesTest, OnlyDatesAreReadAsDates) {
    giveList({@"one"});
    const EveryPropertyHasType<kABMultiDataProperty> data;
    EXPECT_EQ(getValue("phone", "0"), "one");
    const EveryPropertyHasType<kABMultiArrayProperty> array;
    EXPECT_EQ(getValue("phone", "0"), "one");
}

TEST_F(EntriesTest, OtherTypesCannotBeSet) {
    giveList({@"one"});
    const EveryPropertyHasType<kABMultiDataProperty> type;
    expectFailure(setValue("phone", "0", "x"), "Invalid property type ", "-8006");
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(EntriesTest, ATypeOfASingleValueIsRefusedWhateverTheRest) {
    giveList({@"one"});
    const EveryPropertyHasType<kABStringProperty> type;
    expectFailure(setValue("phone", "0", "x"), "Invalid property type ", "-8006");
    EXPECT_FALSE(state.gValues);
    expectFailure(getValue("phone", "0"), "Invalid property type ", "-8006");
    expectFailure(deleteValue("phone", "0"), "Invalid property type ", "-8006");
}

// On purpose: the list is written back although nothing in it has changed.
TEST_F(EntriesTest, NoDateFailsAndStillWritesTheListBack) {
    NSDate* date = [NSDate dateWithTimeIntervalSinceReferenceDate:0];
    giveList({date});
    const EveryPropertyHasType<kABMultiDateProperty> type;
    expectFailure(setValue("dates", "0", "no date"), "Property value cannot be empty ", "-8029");
    EXPECT_EQ(personDouble.writes, 1);
    EXPECT_EQ(written(0), utf8([date description]));
    personDouble.refuses = true;
    expectFailure(setValue("dates", "0", "no date"), "Error replacing multi-value array ", "-8013");
    EXPECT_EQ(personDouble.writes, 2);
}

TEST_F(EntriesTest, ARefusedChangeIsNotWrittenBack) {
    giveList({@"one"});
    listDouble = {.refusesValues = true, .refusesLabels = true, .refusesRemoving = true};
    expectFailure(setValue("phone", "0", "x"), "Error setting property ", "-8012");
    expectFailure(setLabel("phone", "0", "x"), "Error setting label ", "-8014");
    expectFailure(deleteValue("phone", "0"), "Failed to delete record ", "-8002");
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(EntriesTest, NoLabelIsRefused) {
    giveList({@"one"});
    expectFailure(setLabel("phone", "0", ""), "Error setting label ", "-8014");
    EXPECT_EQ(utf8([state.gValues.get() labelAtIndex:0]), "Cottage");
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(EntriesTest, TheRecordCanRefuseTheList) {
    giveList({@"one", address()});
    personDouble.refuses = true;
    const std::string text = "Error replacing multi-value array ";
    expectFailure(setValue("phone", "0", "x"), text, "-8013");
    expectFailure(setValue("phone", "1", "x", "city"), text, "-8013");
    expectFailure(setLabel("phone", "0", "x"), text, "-8013");
    expectFailure(deleteValue("phone", "1", "City"), text, "-8013");
    expectFailure(deleteValue("phone", "0"), text, "-8013");
    EXPECT_EQ(personDouble.writes, 5);
    EXPECT_EQ([state.gValues.get() count], 1U) << "the copy stays as it has become";
}

TEST_F(EntriesTest, AnEntryWithoutALabelIsAnError) {
    giveList({@"one"});
    listDouble.hidesLabels = true;
    expectFailure(getLabel("phone", "0"), "Unable to access label ", "-8028");
}

TEST_F(EntriesTest, ExceptionsFailTheCallAndLeaveTheState) {
    giveList({@"one"});
    personDouble.failsWriting = true;
    const std::string text = "Exception caught in function cannot write Phone";
    expectFailure(setValue("phone", "0", "x"), text, "-8000");
    EXPECT_EQ(utf8([state.gValues.get() valueAtIndex:0]), "x");
    expectFailure(setLabel("phone", "0", "x"), text, "-8000");
    expectFailure(deleteValue("phone", "0"), text, "-8000");
    EXPECT_EQ([state.gValues.get() count], 0U);
    personDouble.failsReading = true;
    const std::string reading = "Exception caught in function cannot read Email";
    expectFailure(getValue("e-mail", "0"), reading, "-8000");
    expectFailure(getLabel("e-mail", "0"), reading, "-8000");
    expectFailure(setValue("e-mail", "0", "x"), reading, "-8000");
    expectFailure(setLabel("e-mail", "0", "x"), reading, "-8000");
    expectFailure(deleteValue("e-mail", "0"), reading, "-8000");
    EXPECT_EQ(openProperty(), "Email");
    EXPECT_FALSE(state.gValues);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(EntriesTest, AnAddressKeepsTheFieldsThatAreNotNamed) {
    giveList({address(), @"text"});
    EXPECT_EQ(setValue("address", "0", "Wells", "CITY"), "0");
    EXPECT_EQ(written(0), "{\n    City = Wells;\n    CountryCode = us;\n}");
    EXPECT_EQ(setValue("address", "0", "BA5", "zip"), "0");
    EXPECT_EQ(written(0), "{\n    City = Bath;\n    CountryCode = us;\n    ZIP = BA5;\n}")
        << "of the person's list, not the copy before";
    EXPECT_EQ(setValue("address", "0", "", "city"), "0");
    EXPECT_EQ(written(0), "{\n    City = \"\";\n    CountryCode = us;\n}") << "an empty field is there";
    EXPECT_EQ(deleteValue("address", "0", "countrycode"), "0");
    EXPECT_EQ(written(0), "{\n    City = Bath;\n}");
    EXPECT_EQ(written(1), "text");
    EXPECT_EQ(deleteValue("address", "0", "State"), "0") << "which it does not have";
    EXPECT_EQ(written(0), "{\n    City = Bath;\n    CountryCode = us;\n}");
    expectFailure(setValue("address", "1", "x", "no such field"), "Invalid property type ", "-8006");
    expectFailure(setValue("address", "0", "x", "no such field"), "Invalid value for key ", "-8008");
    EXPECT_EQ(deleteValue("address", "0", "city"), "0") << "the key's own letter case does not matter";
    EXPECT_EQ(written(0), "{\n    CountryCode = us;\n}");
}

TEST_F(EntriesTest, AFailedReadOfADateIsText) {
    giveList({[NSDate dateWithTimeIntervalSinceReferenceDate:0]});
    const OwnedExprEnv environment;
    const OwnedData result;
    const auto read = [&](const char* id) {
        EXPECT_EQ(Do_KORU_GetValueForUID(16, *environment, *vectorOf({"dates", id}), *result), 0);
        return result->GetNativeType();
    };
    EXPECT_EQ(read("0"), fmx::Data::kDTTimeStamp);
    EXPECT_EQ(read("1"), fmx::Data::kDTText);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8000");
}

TEST_F(EntriesTest, TheLabelAsksForAGroupBeforeItMakesPeopleCurrent) {
    giveList({@"one"});
    state.g_group.reset();
    expectFailure(getLabel("phone", "0"), "No active record in context ", "-8003");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(getValue("phone", "0"), "one");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(getLabel("phone", "0"), "Cottage");
}

} // namespace
