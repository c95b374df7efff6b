#import "plugin/records/lifecycle.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include <vector>

namespace {

ABAddressBook* book() {
    return [ABAddressBook sharedAddressBook];
}

NSError* someError() {
    return [NSError errorWithDomain:@"Test"
                               code:1
                           userInfo:[NSDictionary dictionaryWithObject:@"the disk is full"
                                                                forKey:NSLocalizedDescriptionKey]];
}

BOOL failWithError(id, SEL, NSError** error) {
    *error = someError();
    return NO;
}

BOOL failWithoutError(id, SEL, NSError**) {
    return NO;
}

BOOL succeedWithError(id, SEL, NSError** error) {
    *error = someError();
    return YES;
}

BOOL refuse(id, SEL) {
    return NO;
}

const SEL kSaving = @selector(saveAndReturnError:);

class LifecycleTest : public PluginTest {};

TEST_F(LifecycleTest, ANewGroupHasItsNameBeforeItIsSaved) {
    state.g_lastSearchType = kPersonType;
    const std::string id = call(Do_KORU_New, {"Group", "Harbour", "ignored"});
    EXPECT_EQ(id.substr(36), ":ABGroup");
    EXPECT_TRUE(state.gNewRecord);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"name"}), "Harbour");
    EXPECT_EQ([[book() groups] count], 0U);
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_FALSE(state.gNewRecord);
    EXPECT_FALSE(state.g_group);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_EQ(state.savedCount, 1U);
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"name"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8003");
    EXPECT_EQ(call(Do_KORU_Open, {id}), "0");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"name"}), "Harbour");
}

TEST_F(LifecycleTest, ANewPersonTakesNoName) {
    const std::string id = call(Do_KORU_New, {"contact", "Anna"});
    EXPECT_EQ(id.substr(36), ":ABPerson");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"firstname"}), "");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"id"}), id);
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_FALSE(state.g_person);
    EXPECT_NE([book() recordForUniqueId:string(id)], nil);
}

TEST_F(LifecycleTest, ASecondNewRecordDiscardsTheFirst) {
    const std::string first = call(Do_KORU_New, {"person"});
    const std::string second = call(Do_KORU_New, {"person"});
    EXPECT_NE(first, second);
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_EQ([book() recordForUniqueId:string(first)], nil);
    EXPECT_NE([book() recordForUniqueId:string(second)], nil);
}

TEST_F(LifecycleTest, NewWithoutATypeFailsByItsCodeAlone) {
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_New, {""}), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterValue);
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_EQ(lastErrorNumber(), "0");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_FALSE(state.gNewRecord);
}

TEST_F(LifecycleTest, NewWithAnUnknownTypeFailsAndChangesNothing) {
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_New, {"company"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid Parameter value(s) ");
    EXPECT_EQ(lastErrorNumber(), "-4");
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    EXPECT_FALSE(state.gNewRecord);
}

TEST_F(LifecycleTest, SavingNothingSucceedsAndCounts) {
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_EQ(call(Do_KORU_Save, {"ignored"}), "0");
    EXPECT_EQ(state.savedCount, 2U);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
}

TEST_F(LifecycleTest, SaveAddsTheCurrentRecordOfTheTypeAtHand) {
    const std::string person = call(Do_KORU_New, {"person"});
    state.g_currentRecordType = kGroupType;
    state.g_group = Retained<ABGroup>::adopt([[ABGroup alloc] initWithAddressBook:book()]);
    const std::string group = utf8([state.g_group.get() uniqueId]);
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_NE([book() recordForUniqueId:string(group)], nil);
    EXPECT_EQ([book() recordForUniqueId:string(person)], nil);
    EXPECT_TRUE(state.g_person);
    EXPECT_FALSE(state.g_group);
    EXPECT_FALSE(state.gNewRecord);
}

TEST_F(LifecycleTest, SaveWithNoRecordOfTheTypeAtHandAddsNone) {
    const std::string person = call(Do_KORU_New, {"person"});
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_FALSE(state.gNewRecord);
    EXPECT_TRUE(state.g_person);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
    EXPECT_EQ(state.savedCount, 1U);
    EXPECT_EQ([[book() people] count] + [[book() groups] count], 0U);
}

TEST_F(LifecycleTest, OpeningAnotherRecordLosesTheNewOne) {
    const std::string other = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string person = call(Do_KORU_New, {"person"});
    EXPECT_EQ(call(Do_KORU_Open, {other}), "0");
    EXPECT_TRUE(state.gNewRecord);
    EXPECT_EQ(call(Do_KORU_SetValueForProperty, {"nickname", "Annie"}), "0");
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_FALSE(state.gNewRecord);
    EXPECT_FALSE(state.g_person) << "as after any save of a new record";
    EXPECT_EQ([book() recordForUniqueId:string(person)], nil);
    EXPECT_EQ([[book() people] count], 1U);
    EXPECT_EQ(call(Do_KORU_Open, {other}), "0");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"nickname"}), "Annie");
}

TEST_F(LifecycleTest, AnExceptionFailsTheCall) {
    const std::string uid = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const auto raise = +[](id, SEL, id) -> id {
        [NSException raise:NSInternalInconsistencyException format:@"the book is on fire"];
        return nil;
    };
    const auto expectFailure = [](const std::string& answer) {
        EXPECT_EQ(answer, "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Exception caught in function the book is on fire");
        EXPECT_EQ(lastErrorNumber(), "-8000");
    };
    {
        const ReplacedMethod opening(object_getClass([ABAddressBook class]), @selector(sharedAddressBook),
                                     raise);
        expectFailure(call(Do_KORU_New, {"person"}));
    }
    {
        const ReplacedMethod naming([ABGroup class], @selector(setValue:forProperty:), raise);
        expectFailure(call(Do_KORU_New, {"group", "Harbour"}));
    }
    {
        const ReplacedMethod adding([ABAddressBook class], @selector(addRecord:), raise);
        expectFailure(call(Do_KORU_Save));
        EXPECT_TRUE(state.gNewRecord);
        EXPECT_EQ(state.savedCount, 0U);
    }
    {
        const ReplacedMethod removing([ABAddressBook class], @selector(removeRecord:), raise);
        expectFailure(call(Do_KORU_Delete, {uid}));
        expectFailure(call(Do_KORU_ClearAll, {"", "members", "0"}));
    }
    {
        const ReplacedMethod saving([ABAddressBook class], kSaving, raise);
        expectFailure(call(Do_KORU_ClearAll, {"", "nothing", "0"}));
    }
    EXPECT_EQ([[book() people] count], 1U);
}

TEST_F(LifecycleTest, AFailedSaveKeepsTheDescriptionBesideAnEmptyExtendedText) {
    state.g_currentRecordType = kGroupType;
    {
        const ReplacedMethod saving([ABAddressBook class], kSaving, failWithError);
        EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    }
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "the disk is full");
    EXPECT_EQ(lastErrorText(), "Failed to save record ");
    EXPECT_EQ(lastErrorNumber(), "-8005");
    EXPECT_EQ(state.savedCount, 0U);
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
    {
        const ReplacedMethod saving([ABAddressBook class], kSaving, failWithoutError);
        EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    }
    EXPECT_FALSE(errors.g_sExceptionTxt);
    EXPECT_EQ(lastErrorText(), "Failed to save record ");
}

TEST_F(LifecycleTest, ASaveThatSucceedsWithAnErrorFailsAndCountsAllTheSame) {
    state.g_currentRecordType = kGroupType;
    const ReplacedMethod saving([ABAddressBook class], kSaving, succeedWithError);
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Failed to save record the disk is full");
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "the disk is full");
    EXPECT_EQ(state.savedCount, 1U);
    EXPECT_EQ(state.g_lastSearchType, kGroupType);
}

TEST_F(LifecycleTest, DeleteRemovesTheRecordAndLeavesTheStateAlone) {
    ABPerson* person = addPerson(@"Anna", @"Smith");
    const std::string id = utf8([person uniqueId]);
    call(Do_KORU_Search, {"person", "lastname", "", "", "Smith", "Equal"});
    call(Do_KORU_OpenFirstRecord);
    EXPECT_EQ(call(Do_KORU_Delete, {id}), "0");
    EXPECT_EQ([book() recordForUniqueId:string(id)], nil);
    EXPECT_TRUE(state.g_person);
    EXPECT_EQ([state.g_personSearchResults.get() count], 1U);
    EXPECT_EQ(call(Do_KORU_Delete, {id}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Record does not exist ");
    EXPECT_EQ(call(Do_KORU_Delete, {""}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8001");
}

TEST_F(LifecycleTest, DeleteReportsAFailedSave) {
    const std::string id = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    {
        const ReplacedMethod saving([ABAddressBook class], @selector(save), refuse);
        EXPECT_EQ(call(Do_KORU_Delete, {id}), "!!ERROR!!");
    }
    EXPECT_EQ(lastErrorText(), "Failed to delete record ");
    EXPECT_EQ(lastErrorNumber(), "-8002");
}

TEST_F(LifecycleTest, ClearAllMembersKeepsTheOwnCardWhenAsked) {
    ABPerson* own = addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    addGroup(@"Harbour");
    [book() setMe:own];
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "Members", "1"}), "0");
    ASSERT_EQ([[book() people] count], 1U);
    EXPECT_EQ(utf8([[[book() people] objectAtIndex:0] uniqueId]), utf8([own uniqueId]));
    EXPECT_EQ([[book() groups] count], 1U);
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "members", "0"}), "0");
    EXPECT_EQ([[book() people] count], 0U);
    EXPECT_FALSE([book() hasUnsavedChanges]);
}

TEST_F(LifecycleTest, ClearAllWithoutAWordClearsBoth) {
    addPerson(@"Anna", @"Smith");
    addGroup(@"Harbour");
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "everything", "0"}), "0");
    EXPECT_EQ([[book() people] count] + [[book() groups] count], 2U);
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "GROUPS", "0"}), "0");
    EXPECT_EQ([[book() people] count], 1U);
    EXPECT_EQ([[book() groups] count], 0U);
    addGroup(@"Harbour");
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "", "0"}), "0");
    EXPECT_EQ([[book() people] count] + [[book() groups] count], 0U);
}

TEST_F(LifecycleTest, ClearAllOfAGroupDeletesItsMembersAndDetachesItsSubgroups) {
    ABGroup* group = addGroup(@"Harbour");
    ABGroup* inner = addGroup(@"Crew");
    ABPerson* member = addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    ASSERT_TRUE([group addMember:member]);
    ASSERT_TRUE([group addSubgroup:inner]);
    ASSERT_TRUE([book() save]);
    [book() setMe:member];
    const std::string id = utf8([group uniqueId]);
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "groups", "1"}), "0");
    EXPECT_EQ([[group subgroups] count], 0U);
    EXPECT_EQ([[book() groups] count], 2U);
    EXPECT_EQ(utf8([state.g_group.get() uniqueId]), id);
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "members", "1"}), "0");
    EXPECT_EQ([[book() people] count], 1U) << "a member goes although it is the own card";
    EXPECT_EQ([[group members] count], 0U);
}

// The identifiers of the records that were to be removed, in order; nothing is.
std::vector<std::string> removedIds;

BOOL noteRemoval(id, SEL, ABRecord* record) {
    removedIds.push_back(utf8([record uniqueId]));
    return NO;
}

std::vector<std::string> idsOf(std::initializer_list<NSArray*> lists) {
    std::vector<std::string> ids;
    for (NSArray* list : lists) {
        for (NSUInteger i = 0; i < [list count]; ++i) {
            ids.push_back(utf8([[list objectAtIndex:i] uniqueId]));
        }
    }
    return ids;
}

TEST_F(LifecycleTest, ClearAllRemovesPeopleThenGroupsEachInTheOrderOfTheirList) {
    for (NSString* name : {@"Anna", @"Ben", @"Clara"}) {
        addPerson(name, @"Smith");
        addGroup(name);
    }
    const std::vector<std::string> everything = idsOf({[book() people], [book() groups]});
    ASSERT_EQ(everything.size(), 6U);
    const ReplacedMethod removing([ABAddressBook class], @selector(removeRecord:), noteRemoval);
    removedIds.clear();
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "", "0"}), "0") << "refusals are not looked at";
    EXPECT_EQ(removedIds, everything);
}

TEST_F(LifecycleTest, ClearAllOfAGroupRemovesMembersThenSubgroupsEachInTheOrderOfTheirList) {
    ABGroup* group = addGroup(@"Harbour");
    for (NSString* name : {@"Anna", @"Ben", @"Clara"}) {
        ASSERT_TRUE([group addMember:addPerson(name, @"Smith")]);
        ASSERT_TRUE([group addSubgroup:addGroup(name)]);
    }
    ASSERT_TRUE([book() save]);
    const std::vector<std::string> everything = idsOf({[group members], [group subgroups]});
    ASSERT_EQ(everything.size(), 6U);
    const ReplacedMethod removing([ABAddressBook class], @selector(removeRecord:), noteRemoval);
    const ReplacedMethod detaching([ABGroup class], @selector(removeSubgroup:), noteRemoval);
    removedIds.clear();
    EXPECT_EQ(call(Do_KORU_ClearAll, {utf8([group uniqueId]), "", "0"}), "0");
    EXPECT_EQ(removedIds, everything);
}

TEST_F(LifecycleTest, ClearAllMayKeepAnOwnCardThatThereIsNot) {
    addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    EXPECT_EQ([book() me], nil);
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "members", "1"}), "0");
    EXPECT_EQ([[book() people] count], 0U);
}

TEST_F(LifecycleTest, ClearAllOfEverythingMayKeepTheOwnCard) {
    ABPerson* own = addPerson(@"Anna", @"Smith");
    addPerson(@"Ben", @"Smith");
    addGroup(@"Harbour");
    [book() setMe:own];
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "", "1"}), "0");
    ASSERT_EQ([[book() people] count], 1U);
    EXPECT_EQ(utf8([[[book() people] objectAtIndex:0] uniqueId]), utf8([own uniqueId]));
    EXPECT_EQ([[book() groups] count], 0U);
}

TEST_F(LifecycleTest, ClearAllOfAGroupGoesByTheWordToo) {
    ABGroup* group = addGroup(@"Harbour");
    ABGroup* inner = addGroup(@"Crew");
    ASSERT_TRUE([group addMember:addPerson(@"Anna", @"Smith")]);
    ASSERT_TRUE([group addSubgroup:inner]);
    addPerson(@"Ben", @"Smith");
    ASSERT_TRUE([book() save]);
    const std::string id = utf8([group uniqueId]);
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "everything", "0"}), "0");
    EXPECT_EQ(utf8([state.g_group.get() uniqueId]), id) << "current, though nothing went";
    EXPECT_EQ([[group members] count], 1U);
    EXPECT_EQ([[group subgroups] count], 1U);
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "", "0"}), "0");
    EXPECT_EQ([[group members] count], 0U);
    EXPECT_EQ([[group subgroups] count], 0U);
    EXPECT_EQ([[book() people] count], 1U);
    EXPECT_EQ([[book() groups] count], 2U);
    EXPECT_FALSE([book() hasUnsavedChanges]);
}

TEST_F(LifecycleTest, ClearAllRefusesANewGroupThatIsNotSaved) {
    const std::string id = call(Do_KORU_New, {"group", "Harbour"});
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "", "0"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid record type ");
    EXPECT_EQ(lastErrorNumber(), "-8018");
    EXPECT_TRUE(state.g_group);
    EXPECT_EQ(call(Do_KORU_Save), "0");
    EXPECT_EQ(call(Do_KORU_ClearAll, {id, "", "0"}), "0");
}

TEST_F(LifecycleTest, ClearAllRefusesPersonsAndUnknownIds) {
    const std::string person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    ABGroup* group = addGroup(@"Harbour");
    state.g_group = Retained<ABGroup>::retain(group);
    for (const std::string& id : {person, std::string("nobody")}) {
        EXPECT_EQ(call(Do_KORU_ClearAll, {id, "members", "0"}), "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Invalid record type ");
        EXPECT_EQ(lastErrorNumber(), "-8018");
        EXPECT_EQ(state.g_group.get(), group);
    }
    EXPECT_EQ([[book() people] count], 1U);
}

TEST_F(LifecycleTest, ClearAllGoesByTheErrorObjectNotByTheAnswer) {
    {
        const ReplacedMethod saving([ABAddressBook class], kSaving, succeedWithError);
        EXPECT_EQ(call(Do_KORU_ClearAll, {"", "nothing", "0"}), "!!ERROR!!");
    }
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "the disk is full");
    EXPECT_EQ(lastErrorText(), "Failed to save record ");
    const ReplacedMethod saving([ABAddressBook class], kSaving, failWithoutError);
    EXPECT_EQ(call(Do_KORU_ClearAll, {"", "nothing", "0"}), "0");
}

TEST_F(LifecycleTest, AGroupThatIsNotThereAnyMoreIsNotCleared) {
    // An id with a class but without a record: the group's class is asked first.
    const std::string uid = utf8([addGroup(@"Harbour") uniqueId]);
    state.g_group = Retained<ABGroup>::retain(addGroup(@"Other"));
    const auto nothing = +[](id, SEL, NSString*) -> ABRecord* { return nil; };
    const ReplacedMethod lookup([ABAddressBook class], @selector(recordForUniqueId:), nothing);
    EXPECT_EQ(call(Do_KORU_ClearAll, {uid, "members", "0"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Record does not exist ");
    EXPECT_FALSE(state.g_group);
}

} // namespace
