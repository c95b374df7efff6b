#import "plugin/records/search.h"

#import "plugin/records/cursor.h"
#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include <ctime>
#include <span>

namespace {

class SearchTest : public PluginTest {
  protected:
    static std::string search(const std::string& type, const std::string& property, const std::string& value,
                              const std::string& comparison = "Equal") {
        return call(Do_KORU_Search, {type, property, "", "", value, comparison});
    }
    static std::string join(const std::string& property, const std::string& value,
                            const std::string& conjunction) {
        return call(Do_KORU_Search, {"person", property, "", "", value, "Equal", conjunction});
    }
};

TEST_F(SearchTest, TheTypeWordSetsTheRecordType) {
    const auto setType = [](const std::string& word) {
        SetType(*vectorOf({word}), 0);
        return state.g_currentRecordType;
    };
    EXPECT_EQ(setType("GROUP"), kGroupType);
    EXPECT_EQ(setType("company"), kGroupType);
    EXPECT_EQ(setType(""), kGroupType);
    EXPECT_EQ(setType("Contact"), kPersonType);
    EXPECT_EQ(setType("Group"), kGroupType);
    EXPECT_EQ(setType("pErSoN"), kPersonType);
    EXPECT_EQ(setType("groups"), kPersonType);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(SearchTest, WithoutATypeWordAnUndeterminedTypeIsTheLastSearchs) {
    state.g_lastSearchType = kGroupType;
    SetType(*vectorOf({}), 0);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_currentRecordType = 2;
    SetType(*vectorOf({"group"}), 1);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    state.g_currentRecordType = 7;
    state.g_lastSearchType = kPersonType;
    SetType(*vectorOf({""}), 0);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(SearchTest, TheCountIsTheResultAndTheListIsKept) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    addPerson(@"Clara", @"Jones");
    EXPECT_EQ(search("person", "lastname", "Smith"), "2");
    EXPECT_EQ([state.g_personSearchResults.get() count], 2U);
    EXPECT_FALSE(state.g_groupSearchResults);
    EXPECT_EQ(search("person", "Last Name", "Nobody"), "0");
    ASSERT_TRUE(state.g_personSearchResults);
    EXPECT_EQ([state.g_personSearchResults.get() count], 0U);
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord), "END");
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(SearchTest, PersonsAndGroupsAreKeptApart) {
    addPerson(@"Anna", @"Smith");
    addGroup(@"Harbour");
    EXPECT_EQ(search("contact", "firstname", "Anna"), "1");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    const std::string person = call(Do_KORU_OpenFirstRecord);
    EXPECT_EQ(search("GROUP", "name", "Harbour"), "1");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_NE(call(Do_KORU_OpenFirstRecord), person);
    EXPECT_TRUE(state.g_person);
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord, {"person"}), person);
    EXPECT_TRUE(state.g_group);
}

TEST_F(SearchTest, ATypeIsRequired) {
    state.g_lastSearchType = kGroupType;
    EXPECT_EQ(search("", "lastname", "Smith"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid Parameter value(s) ");
    EXPECT_EQ(lastErrorNumber(), "-4");
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
}

TEST_F(SearchTest, AnotherTypeWordSearchesGroupsButFilesThemWithThePersons) {
    addGroup(@"Harbour");
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(search("company", "name", "Harbour"), "1");
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_FALSE(state.g_groupSearchResults);
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord).substr(36), ":ABGroup");
    EXPECT_TRUE(state.g_person);
}

TEST_F(SearchTest, AConjunctionNeedsAnEarlierCondition) {
    EXPECT_EQ(join("lastname", "Smith", "constrain"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Function call order is invalid ");
    EXPECT_EQ(lastErrorNumber(), "-8004");
    // So it is with a word that is none.
    EXPECT_EQ(join("lastname", "Smith", "and"), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8004");
    EXPECT_FALSE(state.g_personSearchResults);
}

TEST_F(SearchTest, ConjunctionsWidenAndNarrow) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    addPerson(@"Anna", @"Jones");
    EXPECT_EQ(search("person", "lastname", "Smith"), "2");
    EXPECT_EQ(join("firstname", "Anna", "Constrain"), "1");
    EXPECT_EQ(join("lastname", "Jones", "EXPAND"), "2");
    EXPECT_EQ(join("lastname", "Smith", ""), "2");
    EXPECT_EQ(join("lastname", "Jones", "expand"), "3");
}

TEST_F(SearchTest, AnotherConjunctionIsRefusedAndTheConditionStays) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    ABSearchElement* condition = state.g_searchelement.get();
    NSArray* results = state.g_personSearchResults.get();
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(join("lastname", "Jones", "and"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid Parameter value(s) ");
    EXPECT_EQ(state.g_searchelement.get(), condition);
    EXPECT_EQ(state.g_personSearchResults.get(), results);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
}

TEST_F(SearchTest, AnUnknownComparisonIsEqual) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smithson");
    EXPECT_EQ(search("person", "lastname", "Smith", "equal"), "1");
    EXPECT_EQ(search("person", "lastname", "Smith", "prefixmatch"), "1");
    EXPECT_EQ(search("person", "lastname", "Smith", ""), "1");
    EXPECT_EQ(search("person", "lastname", "Smith", "PrefixMatch"), "2");
}

TEST_F(SearchTest, WhatTheAddressBookRefusesIsAnException) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    NSArray* results = state.g_personSearchResults.get();
    // Neither a property nor, with this comparison, a value.
    for (const auto& [property, comparison] :
         {std::pair{"", "Equal"}, std::pair{"lastname", "PrefixMatch"}}) {
        EXPECT_EQ(call(Do_KORU_Search, {"person", property, "", "", "", comparison}), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        const std::string text = lastErrorText();
        EXPECT_EQ(text.find("Exception caught in function "), 0U) << text;
        EXPECT_GT(text.size(), std::string("Exception caught in function ").size());
        EXPECT_EQ(text.find("0x"), std::string::npos) << text;
        EXPECT_EQ(state.g_personSearchResults.get(), results);
    }
}

TEST_F(SearchTest, ASearchMovesNeitherTheCursorNorTheCurrentRecord) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "2");
    call(Do_KORU_OpenFirstRecord);
    call(Do_KORU_OpenNextRecord);
    ABPerson* current = state.g_person.get();
    EXPECT_EQ(search("person", "firstname", "Anna"), "1");
    EXPECT_EQ(state.g_person.get(), current);
    EXPECT_EQ(state.gCurrentPersonIndex, 1U);
    EXPECT_EQ(call(Do_KORU_OpenNextRecord), "END");
    EXPECT_EQ(state.gCurrentPersonIndex, 2U);
}

TEST_F(SearchTest, TheWalkGoesToTheEndAndBeyond) {
    const std::string ids[] = {utf8([addPerson(@"A", @"Smith") uniqueId]),
                               utf8([addPerson(@"B", @"Smith") uniqueId]),
                               utf8([addPerson(@"C", @"Smith") uniqueId])};
    EXPECT_EQ(search("person", "lastname", "Smith"), "3");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(call(Do_KORU_OpenFirstRecord), ids[0]);
        EXPECT_EQ(call(Do_KORU_OpenNextRecord), ids[1]);
        EXPECT_EQ(call(Do_KORU_OpenNextRecord), ids[2]);
        for (int beyond = 0; beyond < 3; ++beyond) {
            EXPECT_EQ(call(Do_KORU_OpenNextRecord), "END");
            EXPECT_FALSE(state.g_person);
            EXPECT_EQ(lastErrorText(), "Success");
        }
        EXPECT_EQ(state.gCurrentPersonIndex, 5U);
    }
}

TEST_F(SearchTest, ACursorNeedsASearchOfItsType) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8004");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    call(Do_KORU_OpenFirstRecord);
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Harbour"));
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord, {"group"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Function call order is invalid ");
    EXPECT_FALSE(state.g_group) << "the current group goes first";
    EXPECT_TRUE(state.g_person);
}

TEST_F(SearchTest, OnlyNextWithoutAnArgumentFallsBackToTheLastSearchType) {
    addPerson(@"Anna", @"Smith");
    addGroup(@"Harbour");
    EXPECT_EQ(search("group", "name", "Harbour"), "1");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    state.g_currentRecordType = kGroupType;
    call(Do_KORU_OpenNextRecord, {""});
    EXPECT_EQ(state.gCurrentGroupIndex, 1U);
    EXPECT_EQ(state.gCurrentPersonIndex, 0U);
    call(Do_KORU_OpenNextRecord);
    EXPECT_EQ(state.gCurrentPersonIndex, 1U);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_OpenFirstRecord).substr(36), ":ABGroup");
}

TEST_F(SearchTest, NextAfterOpeningAGroupMovesTheGroupsCursor) {
    addPerson(@"Anna", @"Smith");
    const std::string group = utf8([addGroup(@"Harbour") uniqueId]);
    EXPECT_EQ(search("group", "name", "Harbour"), "1");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    EXPECT_EQ(call(Do_KORU_Open, {group}), "0");
    EXPECT_EQ(call(Do_KORU_OpenNextRecord), "END");
    EXPECT_EQ(state.gCurrentGroupIndex, 1U);
    EXPECT_EQ(state.gCurrentPersonIndex, 0U);
    EXPECT_FALSE(state.g_group);
}

TEST_F(SearchTest, OpenLeavesTheEntriesAndTheGroupsCursors) {
    const std::string person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string group = utf8([addGroup(@"Harbour") uniqueId]);
    search("person", "lastname", "Smith");
    NSArray* results = state.g_personSearchResults.get();
    NSArray* list = [NSArray arrayWithObject:@"element"];
    state.gValues = Retained<ABMutableMultiValue>::adopt([[ABMutableMultiValue alloc] init]);
    ABMutableMultiValue* values = state.gValues.get();
    state.gCurrentValuesIndex = 2;
    state.gParentGroups = state.gGroupMembers = state.gGroupSubgroups = Retained<NSArray>::retain(list);
    state.gCurrentGroupParentID = state.gCurrentMember = state.gCurrentSubgroup =
        Retained<NSObject>::retain(list);
    state.gCurrentGroupParentIDIndex = 3;
    state.gCurrentMemberIndex = 4;
    state.gCurrentSubgroupIndex = 5;
    for (const std::string& id : {person, group, std::string("nobody")}) {
        call(Do_KORU_Open, {id});
        EXPECT_EQ(state.g_personSearchResults.get(), results);
        EXPECT_EQ(state.gValues.get(), values);
        EXPECT_EQ(state.gCurrentValuesIndex, 2U);
        for (const auto* held : {&state.gParentGroups, &state.gGroupMembers, &state.gGroupSubgroups}) {
            EXPECT_EQ(held->get(), list);
        }
        for (const auto* held :
             {&state.gCurrentGroupParentID, &state.gCurrentMember, &state.gCurrentSubgroup}) {
            EXPECT_EQ(held->get(), list);
        }
        EXPECT_EQ(state.gCurrentGroupParentIDIndex, 3U);
        EXPECT_EQ(state.gCurrentMemberIndex, 4U);
        EXPECT_EQ(state.gCurrentSubgroupIndex, 5U);
    }
}

TEST_F(SearchTest, AFailedSearchLeavesItsOwnTypeAsTheLast) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    NSArray* results = state.g_personSearchResults.get();
    EXPECT_EQ(call(Do_KORU_Search, {"group", "name", "", "", "Harbour", "Equal", "and"}), "!!ERROR!!");
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(state.g_personSearchResults.get(), results);
    EXPECT_FALSE(state.g_groupSearchResults);
    EXPECT_EQ(call(Do_KORU_Search, {"Contact", "lastname", "", "", "Smith", "Equal", "and"}), "!!ERROR!!");
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
}

TEST_F(SearchTest, AnExceptionLeavesTheConditionAsItWas) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    ABSearchElement* condition = state.g_searchelement.get();
    for (const char* conjunction : {"", "expand"}) {
        EXPECT_EQ(call(Do_KORU_Search, {"person", "", "", "", "Smith", "Equal", conjunction}), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        EXPECT_EQ(state.g_searchelement.get(), condition);
    }
}

TEST_F(SearchTest, AJoinedSearchSeesWhatChangedSinceTheLastOne) {
    ABPerson* anna = addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Jones");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    EXPECT_EQ(join("lastname", "Jones", "expand"), "2");
    addPerson(@"Clara", @"Smith"); // saved: the kept condition finds her now
    EXPECT_EQ(join("lastname", "Miller", "expand"), "3");
    EXPECT_EQ(join("firstname", "Anna", "constrain"), "1");
    [anna setValue:@"Ann" forProperty:kABFirstNameProperty]; // not saved
    EXPECT_EQ(join("lastname", "Nobody", "expand"), "0");
    EXPECT_EQ(join("firstname", "Ann", "expand"), "1");
    EXPECT_TRUE([[ABAddressBook sharedAddressBook] save]);
    EXPECT_EQ(join("lastname", "Nobody", "expand"), "1");
    EXPECT_TRUE([[ABAddressBook sharedAddressBook] removeRecord:anna]);
    EXPECT_EQ(join("lastname", "Nobody", "expand"), "0");
    EXPECT_TRUE([[ABAddressBook sharedAddressBook] save]);
    EXPECT_EQ(join("firstname", "Clara", "expand"), "1");
}

// Returns the processor time in which this many conditions are joined, each of which finds nobody.
double timeToJoin(int conditions) {
    const std::clock_t start = std::clock();
    for (int i = 0; i < conditions; ++i) {
        call(Do_KORU_Search, {"person", "lastname", "", "", "Nobody " + std::to_string(i), "Equal",
                              i % 5 == 0 ? "constrain" : "expand"});
    }
    return static_cast<double>(std::clock() - start);
}

TEST_F(SearchTest, JoiningTakesTheSameHoweverMuchIsJoinedAlready) {
    addPerson(@"Anna", @"Smith");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    timeToJoin(100);
    const double few = timeToJoin(2'000);
    EXPECT_LT(timeToJoin(20'000), 40 * few); // ten times as many; the square would be a hundred times
    EXPECT_EQ(join("lastname", "Smith", "expand"), "1");
    addPerson(@"Ben", @"Smith"); // now all conditions are looked up again
    EXPECT_EQ(join("lastname", "Nobody", "expand"), "2");
    EXPECT_EQ(search("person", "lastname", "Smith"), "2");
}

// The arguments of the last conjunction made, in place of which its first child is answered.
ABSearchConjunction lastConjunction;
Retained<NSArray> lastChildren;

ABSearchElement* noteConjunction(id, SEL, ABSearchConjunction conjunction, NSArray* children) {
    lastConjunction = conjunction;
    lastChildren = Retained<NSArray>::retain(children);
    return [children objectAtIndex:0];
}

TEST_F(SearchTest, TheNewConditionStandsBeforeTheKeptOne) {
    const ReplacedMethod joining(object_getClass([ABSearchElement class]),
                                 @selector(searchElementForConjunction:children:), noteConjunction);
    EXPECT_EQ(search("person", "lastname", "Smith"), "0");
    for (const auto& [word, conjunction] :
         {std::pair{"expand", kABSearchOr}, std::pair{"constrain", kABSearchAnd}}) {
        const Retained<ABSearchElement> kept = state.g_searchelement;
        EXPECT_EQ(join("firstname", "Anna", word), "0");
        EXPECT_EQ(lastConjunction, conjunction);
        ASSERT_EQ([lastChildren.get() count], 2U);
        EXPECT_EQ([lastChildren.get() objectAtIndex:0], state.g_searchelement.get());
        EXPECT_EQ([lastChildren.get() objectAtIndex:1], kept.get());
        EXPECT_NE(state.g_searchelement.get(), kept.get());
    }
    lastChildren.reset();
}

// The arguments of the last condition, which matches nobody.
struct ConditionParts {
    Retained<NSString> property;
    Retained<NSString> label;
    Retained<NSString> key;
    Retained<NSObject> value;
    ABSearchComparison comparison;
};
ConditionParts lastParts;

ABSearchElement* noteCondition(id, SEL, NSString* property, NSString* label, NSString* key, id value,
                               ABSearchComparison comparison) {
    lastParts = {Retained<NSString>::retain(property), Retained<NSString>::retain(label),
                 Retained<NSString>::retain(key), Retained<NSObject>::retain(value), comparison};
    return nil;
}

TEST_F(SearchTest, AConditionOnGroupsHasNeitherALabelNorAKey) {
    const SEL making = @selector(searchElementForProperty:label:key:value:comparison:);
    const ReplacedMethod ofPeople(object_getClass([ABPerson class]), making, noteCondition);
    const ReplacedMethod ofGroups(object_getClass([ABGroup class]), making, noteCondition);
    const auto searchAll = [](const std::string& type) {
        call(Do_KORU_Search, {type, "name", "Home", "City", "Harbour", "PrefixMatch"});
        EXPECT_EQ(utf8(lastParts.property.get()), utf8(kABGroupNameProperty)) << type;
        EXPECT_EQ(utf8([lastParts.value.get() description]), "Harbour") << type;
        EXPECT_EQ(lastParts.comparison, kABPrefixMatch) << type;
    };
    for (const char* type : {"person", "Contact"}) {
        searchAll(type);
        EXPECT_EQ(utf8(lastParts.label.get()), utf8(kABHomeLabel)) << type;
        EXPECT_EQ(utf8(lastParts.key.get()), utf8(kABAddressCityKey)) << type;
    }
    for (const char* type : {"group", "GROUP", "company"}) {
        searchAll(type);
        EXPECT_EQ(lastParts.label.get(), nil) << type;
        EXPECT_EQ(lastParts.key.get(), nil) << type;
    }
    lastParts = {};
}

TEST_F(SearchTest, AConditionCanBeOnPersonsAndOnGroups) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Jones");
    addGroup(@"Harbour");
    EXPECT_EQ(search("person", "lastname", "Smith"), "1");
    EXPECT_EQ(call(Do_KORU_Search, {"group", "name", "", "", "Harbour", "Equal", "expand"}), "2");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ([state.g_groupSearchResults.get() count], 2U);
    EXPECT_EQ([state.g_personSearchResults.get() count], 1U);
    EXPECT_EQ(call(Do_KORU_Search, {"group", "name", "", "", "Harbour", "Equal", "constrain"}), "1");
}

TEST_F(SearchTest, APropertyWithoutANameOfOursIsPassedAsWrittenAndRealNumbersLoseTheirFraction) {
    NSDictionary* added = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:kABRealProperty]
                                                      forKey:@"Shoe Size"];
    ASSERT_GE([ABPerson addPropertiesAndTypes:added], 0);
    ABPerson* person = addPerson(@"Anna", @"Smith");
    ASSERT_TRUE([person setValue:[NSNumber numberWithDouble:2] forProperty:@"Shoe Size"]);
    EXPECT_EQ(search("person", "Shoe Size", "2.7"), "1");
    EXPECT_EQ(search("person", "Shoe Size", "-2.7"), "0");
    EXPECT_EQ(search("person", "shoesize", "2.7"), "0");
    ASSERT_TRUE([person setValue:[NSNumber numberWithDouble:2.7] forProperty:@"Shoe Size"]);
    EXPECT_EQ(search("person", "Shoe Size", "2.7"), "0");
    EXPECT_EQ(search("person", "Shoe Size", "2.7", "GreaterThan"), "1");
    [ABPerson removeProperties:[NSArray arrayWithObject:@"Shoe Size"]];
}

// Gives people a property of the type for the rest of the block.
class AddedProperty {
  public:
    AddedProperty(NSString* name, ABPropertyType type) : name_(name) {
        EXPECT_EQ(
            [ABPerson addPropertiesAndTypes:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:type]
                                                                        forKey:name]],
            1);
    }
    ~AddedProperty() { [ABPerson removeProperties:[NSArray arrayWithObject:name_]]; }
    AddedProperty(const AddedProperty&) = delete;
    AddedProperty& operator=(const AddedProperty&) = delete;

  private:
    NSString* name_;
};

TEST_F(SearchTest, NumbersAreSoughtAsWholeOnesInSinglePropertiesAndInLists) {
    // "2e2" is 2 to who reads whole numbers, 200 to who reads reals; none is cut to 32 bits.
    const std::pair<const char*, long long> wholeNumbers[] = {
        {"2e2", 2}, {"2.9", 2}, {" -2 boats", -2}, {"4294967298", 4294967298}, {"boats", 0}};
    const std::pair<const char*, long long> reals[] = {
        {"2e2", 200}, {"2.9", 2}, {" -2.9 boats", -2}, {"4294967298.9", 4294967298}, {"boats", 0}};
    struct {
        ABPropertyType type;
        bool isList;
        std::span<const std::pair<const char*, long long>> numbers;
    } const properties[] = {{kABIntegerProperty, false, wholeNumbers},
                            {kABMultiIntegerProperty, true, wholeNumbers},
                            {kABRealProperty, false, reals},
                            {kABMultiRealProperty, true, reals}};
    ABPerson* person = addPerson(@"Anna", @"Smith");
    for (const auto& property : properties) {
        const AddedProperty added(@"Berths", property.type);
        for (const auto& [text, number] : property.numbers) {
            id value = [NSNumber numberWithLongLong:number];
            if (property.isList) {
                ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
                [list addValue:value withLabel:kABHomeLabel];
                value = list;
            }
            ASSERT_TRUE([person setValue:value forProperty:@"Berths"]);
            EXPECT_EQ(search("person", "Berths", text), "1") << text << " of type " << property.type;
            EXPECT_EQ(search("person", "Berths", "7"), "0") << text << " of type " << property.type;
        }
    }
}

TEST_F(SearchTest, ATextThatIsNoDateIsNoValue) {
    ABPerson* person = addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    ASSERT_TRUE([person setValue:[NSDate date] forProperty:kABBirthdayProperty]);
    EXPECT_EQ(search("person", "birthday", "not a date", "Equal"), "1") << "who has a birthday";
    EXPECT_EQ(search("person", "birthday", "not a date", "NotEqual"), "1");
    EXPECT_EQ(search("person", "birthday", "1 January 1950", "Equal"), "0");
}

TEST_F(SearchTest, OpenMakesARecordOfEitherClassCurrent) {
    const std::string person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string group = utf8([addGroup(@"Harbour") uniqueId]);
    state.gCurrentProperty = Retained<NSString>::retain(@"open");
    state.gCurrentPersonIndex = 4;
    EXPECT_EQ(call(Do_KORU_Open, {group}), "0");
    EXPECT_FALSE(state.gCurrentProperty);
    EXPECT_EQ(utf8([state.g_group.get() uniqueId]), group);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_EQ(call(Do_KORU_Open, {person}), "0");
    EXPECT_EQ(utf8([state.g_person.get() uniqueId]), person);
    EXPECT_TRUE(state.g_group);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
    EXPECT_EQ(state.gCurrentPersonIndex, 4U);
}

TEST_F(SearchTest, AnUnknownIdIsAPersonsAndLeavesNoneCurrent) {
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anna", @"Smith"));
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Harbour"));
    for (const char* id : {"nobody", "", "nobody:ABGroup"}) {
        state.g_currentRecordType = kGroupType;
        state.g_lastSearchType = kGroupType;
        EXPECT_EQ(call(Do_KORU_Open, {id}), "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Record does not exist ");
        EXPECT_EQ(state.g_currentRecordType, kPersonType);
        EXPECT_EQ(state.g_lastSearchType, kPersonType);
        EXPECT_FALSE(state.g_person);
        EXPECT_TRUE(state.g_group);
    }
}

// What is current while a record is looked up.
bool anyoneIsCurrent = true;
std::uint32_t typeDuringLookUp = 0;

id failToFind(id, SEL, NSString*) {
    anyoneIsCurrent = state.g_person || state.g_group;
    typeDuringLookUp = state.g_currentRecordType;
    [NSException raise:NSInternalInconsistencyException format:@"the book is on fire"];
    return nil;
}

TEST_F(SearchTest, ALookUpThatRaisesLeavesNoneCurrentAndTheTypes) {
    const std::string person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string group = utf8([addGroup(@"Harbour") uniqueId]);
    const ReplacedMethod looking([ABAddressBook class], @selector(recordForUniqueId:), failToFind);
    const auto expectFailure = [](const std::string& id, std::uint32_t type) {
        state.gCurrentProperty = Retained<NSString>::retain(@"open");
        state.g_currentRecordType = state.g_lastSearchType = type;
        EXPECT_EQ(call(Do_KORU_Open, {id}), "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Exception caught in function the book is on fire");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        EXPECT_FALSE(anyoneIsCurrent) << "the record goes before the next is looked up";
        EXPECT_EQ(typeDuringLookUp, type) << "and the type changes behind that";
        EXPECT_EQ(state.g_currentRecordType, type);
        EXPECT_EQ(state.g_lastSearchType, type);
        EXPECT_FALSE(state.gCurrentProperty);
    };
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Ben", @"Jones"));
    expectFailure(person, kGroupType);
    EXPECT_FALSE(state.g_person);
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Crew"));
    expectFailure(group, kPersonType);
    EXPECT_FALSE(state.g_group);
}

TEST_F(SearchTest, ALookUpOfTheClassThatRaisesLeavesTheRecordCurrent) {
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Ben", @"Jones"));
    state.gCurrentProperty = Retained<NSString>::retain(@"open");
    state.g_currentRecordType = kGroupType;
    const ReplacedMethod looking([ABAddressBook class], @selector(recordClassFromUniqueId:), failToFind);
    EXPECT_EQ(call(Do_KORU_Open, {"nobody"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8000");
    EXPECT_TRUE(state.g_person);
    EXPECT_FALSE(state.gCurrentProperty);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
}

TEST_F(SearchTest, OpeningClosesThePropertyAndNothingElse) {
    addPerson(@"Anna", @"Smith");
    search("person", "lastname", "Smith");
    state.gParentGroups = Retained<NSArray>::retain([NSArray array]);
    state.gValues = Retained<ABMutableMultiValue>::adopt([[ABMutableMultiValue alloc] init]);
    for (const HandlerFunction* handler : {Do_KORU_OpenFirstRecord, Do_KORU_OpenNextRecord}) {
        state.gCurrentProperty = Retained<NSString>::retain(@"open");
        call(*handler);
        EXPECT_FALSE(state.gCurrentProperty);
        EXPECT_TRUE(state.gValues);
        EXPECT_TRUE(state.gParentGroups);
    }
}

} // namespace
