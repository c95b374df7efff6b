#import "plugin/properties/new_entries.h"

#import "plugin/vocabulary/labels.h"
#include "tests/plugin/entries_fixture.h"
#include <algorithm>

namespace {

using NewEntriesTest = EntriesTest;

std::string add(const std::string& name, const std::string& value, const std::string& label = "home") {
    return call(Do_KORU_AddMV, {name, value, label});
}

// An address with a street.
std::string addStreet(const std::string& label = "home", const std::string& code = "us") {
    return call(Do_KORU_AddAddress, {label, "1 Quay", "", "", "", "", code});
}

TEST_F(NewEntriesTest, AReadOnlyPersonIsAskedBeforeTheArguments) {
    personDouble.readOnly = true;
    expectFailure(add("shoe size", "", ""), "Record is read only ", "-8017");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_currentRecordType = kGroupType;
    expectFailure(addStreet("", ""), "Record is read only ", "-8017");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(NewEntriesTest, OnlyAddingAValueAsksForAGroup) {
    state.g_group.reset();
    expectFailure(add("phone", "1"), "No active record in context ", "-8003");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(addStreet().size(), 36U);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(add("phone", "1").size(), 36U);
}

TEST_F(NewEntriesTest, TheListIsWrittenBackWithTheNewEntryAtItsEnd) {
    giveList({@"one"});
    const std::string id = add("phone", "two", "MOBILE");
    EXPECT_EQ(written(0) + written(1), "onetwo");
    ABMultiValue* list = personDouble.taken.get();
    EXPECT_EQ(utf8([list identifierAtIndex:1]), id);
    EXPECT_EQ(utf8([list labelAtIndex:0]), "Cottage");
    EXPECT_EQ(utf8([list labelAtIndex:1]), utf8(kABPhoneMobileLabel));
    EXPECT_EQ(openProperty(), "Phone");
    EXPECT_EQ([state.gValues.get() count], 2U);
    EXPECT_EQ(state.gCurrentValuesIndex, 0U);
}

// On purpose: there are fewer words than for changing a label.
TEST_F(NewEntriesTest, TheWordsForLabels) {
    giveList({});
    const auto stored = [](const std::string& label) {
        EXPECT_EQ(add("phone", "1", label).size(), 36U);
        return utf8([personDouble.taken.get() labelAtIndex:0]);
    };
    const std::pair<const char*, NSString*> words[] = {
        {"Home", kABHomeLabel},
        {"Work", kABWorkLabel},
        {"Other", kABOtherLabel},
        {"Home Fax", kABPhoneHomeFAXLabel},
        {"Work Fax", kABPhoneWorkFAXLabel},
        {"Main", kABPhoneMainLabel},
        {"Mobile", kABPhoneMobileLabel},
        {"Pager", kABPhonePagerLabel},
        {"Home Page", kABHomePageLabel},
        {"Anniversary", kABAnniversaryLabel},
        {"Mother", kABMotherLabel},
        {"Father", kABFatherLabel},
        {"Parent", kABParentLabel},
        {"Sister", kABSisterLabel},
        {"Brother", kABBrotherLabel},
        {"Child", kABChildLabel},
        {"Friend", kABFriendLabel},
        {"Spouse", kABSpouseLabel},
        {"Assistant", kABAssistantLabel},
        {"Manager", kABManagerLabel},
    };
    for (const auto& [word, label] : words) {
        NSString* text = string(word);
        EXPECT_EQ(stored(word), utf8(label));
        EXPECT_EQ(stored(utf8([text lowercaseString])), utf8(label));
        EXPECT_EQ(stored(utf8([text uppercaseString])), utf8(label));
    }
    for (const Label& row : frameworkLabels()) {
        const bool listed = std::any_of(std::begin(words), std::end(words), [&](const auto& entry) {
            return [string(entry.first) caseInsensitiveCompare:row.word] == NSOrderedSame;
        });
        EXPECT_EQ(stored(utf8(row.word)), listed ? utf8(row.stored()) : utf8(row.word));
    }
    for (const auto labels : {messagingLabels(), exchangeLabels()}) {
        for (const Label& row : labels) {
            EXPECT_EQ(stored(utf8(row.word)), utf8(row.word));
        }
    }
    EXPECT_EQ(stored("Cottage"), "Cottage");
    EXPECT_EQ(stored("home "), "home ");
}

TEST_F(NewEntriesTest, ANumberIsTheTextsWholeNumber) {
    giveList({});
    const EveryPropertyHasType<kABMultiIntegerProperty> type;
    const std::pair<const char*, const char*> numbers[] = {
        {"12", "12"}, {"-3.9", "-3"}, {"7 boats", "7"}, {"boats", "0"}};
    for (const auto& [text, stored] : numbers) {
        EXPECT_EQ(add("phone", text).size(), 36U);
        EXPECT_EQ(written(0), stored) << text;
    }
}

// On purpose: as with a single value, but unlike a change of an entry.
TEST_F(NewEntriesTest, ARealNumberLosesItsFraction) {
    giveList({});
    const EveryPropertyHasType<kABMultiRealProperty> type;
    const std::pair<const char*, const char*> numbers[] = {
        {"2.75", "2"}, {"-2.75", "-2"}, {"16777217", "16777216"}, {"boats", "0"}};
    for (const auto& [text, stored] : numbers) {
        EXPECT_EQ(add("phone", text).size(), 36U);
        EXPECT_EQ(written(0), stored) << text;
    }
}

TEST_F(NewEntriesTest, OtherTypesAreNotAdded) {
    giveList({@"one"});
    const EveryPropertyHasType<kABMultiDataProperty> type;
    expectFailure(add("phone", "x"), "Failed to add property ", "-8016");
    EXPECT_EQ([state.gValues.get() count], 1U);
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(NewEntriesTest, ASingleValueIsNoList) {
    expectFailure(add("firstname", "x"), "Invalid property type ", "-8006");
    const EveryPropertyHasType<kABDictionaryProperty> type;
    expectFailure(addStreet(), "Invalid property type ", "-8006");
    EXPECT_EQ(openProperty(), "Address");
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(NewEntriesTest, AnAddressNeedsTheProperty) {
    const EveryPropertyHasType<kABErrorInProperty> type;
    expectFailure(addStreet(), "Error in property ", "-8011");
}

// A list that there was not is open, though empty, when what was to be its first entry is not taken.
TEST_F(NewEntriesTest, ARefusedFirstEntryLeavesAnEmptyList) {
    expectFailure(add("dates", "no date"), "Failed to add property ", "-8016");
    EXPECT_EQ(openProperty(), "ABDate");
    ASSERT_TRUE(state.gValues);
    EXPECT_EQ([state.gValues.get() count], 0U);
    EXPECT_EQ(call(Do_KORU_OpenNextMVProperty), "END");
    expectFailure(addStreet(""), "Failed to create address ", "-8015");
    EXPECT_EQ(openProperty(), "Address");
    EXPECT_EQ([state.gValues.get() count], 0U);
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(NewEntriesTest, NoLabelIsRefused) {
    giveList({@"one"});
    expectFailure(add("phone", "two", ""), "Failed to add property ", "-8016");
    EXPECT_EQ([state.gValues.get() count], 1U);
    expectFailure(addStreet(""), "Failed to create address ", "-8015");
    EXPECT_EQ([state.gValues.get() count], 1U);
    EXPECT_EQ(personDouble.writes, 0);
}

TEST_F(NewEntriesTest, TheRecordCanRefuseTheList) {
    personDouble.refuses = true;
    expectFailure(add("phone", "1"), "Error replacing multi-value array ", "-8013");
    EXPECT_EQ([state.gValues.get() count], 1U) << "the copy stays as it has become";
    expectFailure(addStreet(), "Error replacing multi-value array ", "-8013");
    EXPECT_EQ(personDouble.writes, 2);
}

TEST_F(NewEntriesTest, ExceptionsFailTheCall) {
    personDouble.failsWriting = true;
    expectFailure(add("phone", "1"), "Exception caught in function cannot write Phone", "-8000");
    expectFailure(addStreet(), "Exception caught in function cannot write Address", "-8000");
    personDouble.failsReading = true;
    expectFailure(add("phone", "1"), "Exception caught in function cannot read Phone", "-8000");
    expectFailure(addStreet(), "Exception caught in function cannot read Address", "-8000");
    EXPECT_EQ(personDouble.writes, 2);
}

// On purpose: the host gets no error, even when the call fails.
TEST_F(NewEntriesTest, TheHostSeesSuccessAlone) {
    const OwnedExprEnv environment;
    const OwnedData result;
    EXPECT_EQ(Do_KORU_AddMV(32, *environment, *vectorOf({"shoe size", "1", "home"}), *result), 0);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8010");
    EXPECT_EQ(Do_KORU_AddMV(32, *environment, *vectorOf({"phone", "1", "home"}), *result), 0);
    EXPECT_EQ(lastErrorText(), "Success") << "the error before is forgotten";
    EXPECT_EQ(Do_KORU_AddMV(32, *environment, *vectorOf({"phone", "1"}), *result), 0);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_EQ(lastErrorText(), "Success") << "of a wrong number of arguments only the code is kept";
}

TEST_F(NewEntriesTest, BothNamesOfAddingDoTheSame) {
    const OwnedExprEnv environment;
    const OwnedData result;
    EXPECT_EQ(Do_KORU_Add(2, *environment, *vectorOf({"phone", "1", "work"}), *result), 0);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), utf8([state.gValues.get() identifierAtIndex:0]));
    EXPECT_EQ(written(0), "1");
}

} // namespace
