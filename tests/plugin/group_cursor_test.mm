#import "plugin/groups/cursors.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

namespace {

id raise(id, SEL) {
    [NSException raise:NSGenericException format:@"out of order"];
    return nil;
}

id answerNil(id, SEL) {
    return nil;
}

// Groups with people and groups in them, saved; the walks' state is that of the start.
class GroupCursorTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        anna_ = addPerson(@"Anna", @"Smith");
        ben_ = addPerson(@"Ben", @"Smith");
        crew_ = addGroup(@"Crew");
        board_ = addGroup(@"Board");
        fleet_ = addGroup(@"Fleet");
        [crew_ addMember:anna_];
        [crew_ addMember:ben_];
        [board_ addMember:anna_];
        [fleet_ addSubgroup:crew_];
        [fleet_ addSubgroup:board_];
        ASSERT_TRUE([[ABAddressBook sharedAddressBook] save]);
    }

    static void open(ABPerson* person) {
        state.g_person = Retained<ABPerson>::retain(person);
        state.g_currentRecordType = kPersonType;
    }
    static void open(ABGroup* group) {
        state.g_group = Retained<ABGroup>::retain(group);
        state.g_currentRecordType = kGroupType;
    }

    static std::string idOf(ABRecord* record) { return utf8([record uniqueId]); }

    // The call fails with the code and its message.
    static void expectFailure(HandlerFunction handler, const std::string& number, const std::string& text) {
        EXPECT_EQ(call(handler), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), number);
        EXPECT_EQ(lastErrorText(), text);
    }
    static void expectNoRecord(HandlerFunction handler) {
        expectFailure(handler, "-8003", "No active record in context ");
    }
    static void expectWrongOrder(HandlerFunction handler) {
        expectFailure(handler, "-8004", "Function call order is invalid ");
    }
    static void expectException(HandlerFunction handler) {
        expectFailure(handler, "-8000", "Exception caught in function out of order");
    }

    ABPerson* anna_ = nil;
    ABPerson* ben_ = nil;
    ABGroup* crew_ = nil;
    ABGroup* board_ = nil;
    ABGroup* fleet_ = nil;
};

TEST_F(GroupCursorTest, TheWalkThroughParentsKeepsItsPlaceInTheState) {
    open(anna_);
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(crew_));
    EXPECT_EQ([state.gParentGroups.get() count], 2U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), crew_);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 1U);
    EXPECT_EQ(call(Do_KORU_GetNextParentID), idOf(board_));
    EXPECT_EQ(state.gCurrentGroupParentID.get(), board_);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(call(Do_KORU_GetNextParentID), "END");
        EXPECT_EQ(state.gCurrentGroupParentID.get(), board_) << "the last one stays";
        EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);
        EXPECT_EQ([state.gParentGroups.get() count], 2U);
    }
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(crew_));
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 1U);
    EXPECT_FALSE(state.gGroupMembers);
    EXPECT_FALSE(state.gGroupSubgroups);
    EXPECT_EQ(state.gCurrentMemberIndex + state.gCurrentSubgroupIndex, 0U);
}

TEST_F(GroupCursorTest, WithoutAListOfParentsOnlyTheListGoes) {
    open(anna_);
    call(Do_KORU_GetFirstParentID);
    call(Do_KORU_GetNextParentID);
    state.g_person.reset();
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), "END");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), board_);
    expectWrongOrder(Do_KORU_GetNextParentID);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), board_);
}

TEST_F(GroupCursorTest, AnEmptyListOfParentsResetsTheIndexAlone) {
    open(anna_);
    call(Do_KORU_GetFirstParentID);
    open(fleet_);
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), "END");
    ASSERT_TRUE(state.gParentGroups);
    EXPECT_EQ([state.gParentGroups.get() count], 0U);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 0U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), crew_) << "nothing took its place";
    EXPECT_EQ(call(Do_KORU_GetNextParentID), "END");
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(GroupCursorTest, ParentsAreRefusedWhenGroupsAreCurrentAndNoneIsOpen) {
    open(anna_);
    call(Do_KORU_GetFirstParentID);
    state.g_currentRecordType = kGroupType;
    NSArray* list = state.gParentGroups.get();
    expectNoRecord(Do_KORU_GetFirstParentID);
    expectNoRecord(Do_KORU_GetNextParentID);
    EXPECT_EQ(state.gParentGroups.get(), list);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 1U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), crew_);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    // Asked before the list is.
    state.gParentGroups.reset();
    expectNoRecord(Do_KORU_GetNextParentID);
}

TEST_F(GroupCursorTest, OnlyFirstParentSettlesAnUndeterminedType) {
    open(crew_);
    open(anna_);
    state.g_currentRecordType = 2;
    state.g_lastSearchType = kGroupType;
    expectWrongOrder(Do_KORU_GetNextParentID);
    EXPECT_EQ(state.g_currentRecordType, 2U);
    EXPECT_EQ(call(Do_KORU_GetFirstMemberID), idOf(anna_));
    EXPECT_EQ(call(Do_KORU_GetFirstSubgroupID), "END");
    EXPECT_EQ(state.g_currentRecordType, 2U);
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(fleet_));
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
    state.g_currentRecordType = 3;
    state.g_lastSearchType = kPersonType;
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(crew_));
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    state.g_lastSearchType = kGroupType;
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(crew_)) << "what is determined stays";
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(GroupCursorTest, EveryTypeButPersonsMeansTheParentsOfTheGroup) {
    open(crew_);
    open(anna_);
    state.g_currentRecordType = 2;
    state.g_lastSearchType = 2;
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), idOf(fleet_));
    state.g_group.reset();
    EXPECT_EQ(call(Do_KORU_GetFirstParentID), "END") << "refused only while groups are current";
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_EQ(state.g_currentRecordType, 2U);
}

TEST_F(GroupCursorTest, AnArgumentIsRefusedBeforeAnythingElse) {
    open(anna_);
    for (HandlerFunction* handler :
         {Do_KORU_GetFirstParentID, Do_KORU_GetNextParentID, Do_KORU_GetFirstMemberID,
          Do_KORU_GetNextMemberID, Do_KORU_GetFirstSubgroupID, Do_KORU_GetNextSubgroupID}) {
        EXPECT_EQ(call(handler, {"group"}), "!!ERROR!!");
        EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
        EXPECT_EQ(lastErrorText(), "Success");
    }
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
    EXPECT_FALSE(state.gParentGroups);
}

TEST_F(GroupCursorTest, AFailingListOfParentsIsGone) {
    open(anna_);
    call(Do_KORU_GetFirstParentID);
    call(Do_KORU_GetNextParentID);
    {
        const ReplacedMethod parents([ABPerson class], @selector(parentGroups), raise);
        expectException(Do_KORU_GetFirstParentID);
        EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "out of order");
    }
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);
    EXPECT_EQ(state.gCurrentGroupParentID.get(), board_);
    expectWrongOrder(Do_KORU_GetNextParentID);
}

// In the walk through parents the index moves before the identifier is read, in the others after it.
TEST_F(GroupCursorTest, AFailingIdentifierLeavesTheElementCurrent) {
    open(crew_);
    open(anna_);
    {
        const ReplacedMethod ofPersons([ABPerson class], @selector(uniqueId), raise);
        const ReplacedMethod ofGroups([ABGroup class], @selector(uniqueId), raise);
        expectException(Do_KORU_GetFirstParentID);
        EXPECT_EQ(state.gCurrentGroupParentID.get(), crew_);
        EXPECT_EQ(state.gCurrentGroupParentIDIndex, 1U);
        expectException(Do_KORU_GetNextParentID);
        EXPECT_EQ(state.gCurrentGroupParentID.get(), board_);
        EXPECT_EQ(state.gCurrentGroupParentIDIndex, 2U);

        expectException(Do_KORU_GetFirstMemberID);
        EXPECT_EQ(state.gCurrentMember.get(), anna_);
        EXPECT_EQ(state.gCurrentMemberIndex, 0U);
        EXPECT_EQ([state.gGroupMembers.get() count], 2U);
    }
    EXPECT_EQ(call(Do_KORU_GetNextMemberID), idOf(anna_));
    {
        const ReplacedMethod ofPersons([ABPerson class], @selector(uniqueId), raise);
        const ReplacedMethod ofGroups([ABGroup class], @selector(uniqueId), raise);
        expectException(Do_KORU_GetNextMemberID);
        EXPECT_EQ(state.gCurrentMember.get(), ben_);
        EXPECT_EQ(state.gCurrentMemberIndex, 1U);
        open(fleet_);
        expectException(Do_KORU_GetFirstSubgroupID);
        EXPECT_EQ(state.gCurrentSubgroup.get(), crew_);
        EXPECT_EQ(state.gCurrentSubgroupIndex, 0U);
    }
    EXPECT_EQ(call(Do_KORU_GetNextMemberID), idOf(ben_));
}

TEST_F(GroupCursorTest, TheWalkThroughMembersKeepsItsPlaceInTheState) {
    open(crew_);
    EXPECT_EQ(call(Do_KORU_GetFirstMemberID), idOf(anna_));
    EXPECT_EQ([state.gGroupMembers.get() count], 2U);
    EXPECT_EQ(state.gCurrentMember.get(), anna_);
    EXPECT_EQ(state.gCurrentMemberIndex, 1U);
    EXPECT_EQ(call(Do_KORU_GetNextMemberID), idOf(ben_));
    EXPECT_EQ(state.gCurrentMember.get(), ben_);
    EXPECT_EQ(state.gCurrentMemberIndex, 2U);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(call(Do_KORU_GetNextMemberID), "END");
        EXPECT_EQ(state.gCurrentMember.get(), ben_);
        EXPECT_EQ(state.gCurrentMemberIndex, 2U);
    }
    open(fleet_);
    EXPECT_EQ(call(Do_KORU_GetFirstMemberID), "END");
    EXPECT_EQ([state.gGroupMembers.get() count], 0U);
    EXPECT_EQ(state.gCurrentMemberIndex, 0U);
    EXPECT_EQ(state.gCurrentMember.get(), ben_) << "nothing took its place";
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_FALSE(state.gGroupSubgroups);
}

TEST_F(GroupCursorTest, MembersAreRefusedWithoutAGroupWhateverTheType) {
    open(crew_);
    call(Do_KORU_GetFirstMemberID);
    state.g_group.reset();
    for (const std::uint32_t type : {kGroupType, kPersonType, 2U}) {
        state.g_currentRecordType = type;
        expectWrongOrder(Do_KORU_GetFirstMemberID);
        expectWrongOrder(Do_KORU_GetNextMemberID);
        expectWrongOrder(Do_KORU_GetFirstSubgroupID);
        EXPECT_EQ([state.gGroupMembers.get() count], 2U);
        EXPECT_EQ(state.gCurrentMemberIndex, 1U);
        EXPECT_EQ(state.gCurrentMember.get(), anna_);
        EXPECT_EQ(state.g_currentRecordType, type);
    }
    open(board_);
    EXPECT_EQ(call(Do_KORU_GetNextMemberID), idOf(ben_)) << "of the group before";
}

TEST_F(GroupCursorTest, AFailingListOfMembersIsGoneAndItsIndexReset) {
    open(crew_);
    call(Do_KORU_GetFirstMemberID);
    call(Do_KORU_GetNextMemberID);
    {
        const ReplacedMethod members([ABGroup class], @selector(members), raise);
        expectException(Do_KORU_GetFirstMemberID);
    }
    EXPECT_FALSE(state.gGroupMembers);
    EXPECT_EQ(state.gCurrentMemberIndex, 0U);
    EXPECT_EQ(state.gCurrentMember.get(), ben_);
    expectWrongOrder(Do_KORU_GetNextMemberID);
}

TEST_F(GroupCursorTest, AFailingListOfSubgroupsIsGoneAndItsIndexStays) {
    open(fleet_);
    call(Do_KORU_GetFirstSubgroupID);
    ASSERT_EQ(state.gCurrentSubgroupIndex, 1U);
    {
        const ReplacedMethod subgroups([ABGroup class], @selector(subgroups), raise);
        expectException(Do_KORU_GetFirstSubgroupID);
    }
    EXPECT_FALSE(state.gGroupSubgroups);
    EXPECT_EQ(state.gCurrentSubgroupIndex, 1U);
    EXPECT_EQ(state.gCurrentSubgroup.get(), crew_);
    expectWrongOrder(Do_KORU_GetNextSubgroupID);
    EXPECT_EQ(state.gCurrentSubgroup.get(), crew_);
}

TEST_F(GroupCursorTest, AListThatIsNoneIsAnEmptyOneToFirst) {
    open(crew_);
    call(Do_KORU_GetFirstMemberID);
    open(fleet_);
    call(Do_KORU_GetFirstSubgroupID);
    const ReplacedMethod members([ABGroup class], @selector(members), answerNil);
    const ReplacedMethod subgroups([ABGroup class], @selector(subgroups), answerNil);
    EXPECT_EQ(call(Do_KORU_GetFirstMemberID), "END");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_EQ(state.gCurrentMemberIndex, 0U);
    expectWrongOrder(Do_KORU_GetNextMemberID);
    EXPECT_EQ(call(Do_KORU_GetFirstSubgroupID), "END");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_EQ(state.gCurrentSubgroupIndex, 0U);
    expectWrongOrder(Do_KORU_GetNextSubgroupID);
}

TEST_F(GroupCursorTest, NextSubgroupEndsBeforeTheSecond) {
    open(fleet_);
    EXPECT_EQ(call(Do_KORU_GetFirstSubgroupID), idOf(crew_));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ([state.gGroupSubgroups.get() count], 2U);
        EXPECT_EQ(state.gCurrentSubgroup.get(), crew_);
        EXPECT_EQ(state.gCurrentSubgroupIndex, 1U);
        EXPECT_EQ(call(Do_KORU_GetNextSubgroupID), "END");
        EXPECT_EQ(lastErrorText(), "Success");
    }
    EXPECT_FALSE(state.gParentGroups);
    EXPECT_FALSE(state.gGroupMembers);
}

TEST_F(GroupCursorTest, NextSubgroupFailsBehindTheLast) {
    [fleet_ removeSubgroup:crew_];
    open(fleet_);
    EXPECT_EQ(call(Do_KORU_GetFirstSubgroupID), idOf(board_));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(call(Do_KORU_GetNextSubgroupID), "!!ERROR!!");
        EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
        ASSERT_TRUE(errors.g_sExceptionTxt);
        const std::string exception = utf8(errors.g_sExceptionTxt.get());
        EXPECT_FALSE(exception.empty());
        EXPECT_EQ(lastErrorText(), "Exception caught in function " + exception);
        EXPECT_FALSE(state.gCurrentSubgroup);
        EXPECT_EQ([state.gGroupSubgroups.get() count], 1U);
        EXPECT_EQ(state.gCurrentSubgroupIndex, 1U);
    }
    open(crew_);
    EXPECT_EQ(call(Do_KORU_GetFirstSubgroupID), "END");
    EXPECT_EQ(call(Do_KORU_GetNextSubgroupID), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
    EXPECT_EQ(state.gCurrentSubgroupIndex, 0U);
}

TEST_F(GroupCursorTest, NextSubgroupIsGuardedAsTheParentsAre) {
    open(fleet_);
    call(Do_KORU_GetFirstSubgroupID);
    state.g_group.reset();
    expectNoRecord(Do_KORU_GetNextSubgroupID);
    EXPECT_EQ(state.gCurrentSubgroup.get(), crew_);
    EXPECT_EQ(state.gCurrentSubgroupIndex, 1U);
    // None of the functions needs a person, nor those of other record types a group.
    for (const std::uint32_t type : {kPersonType, 2U}) {
        state.g_currentRecordType = type;
        EXPECT_EQ(call(Do_KORU_GetNextSubgroupID), "END");
        EXPECT_EQ(state.g_currentRecordType, type);
    }
    // The guard comes before the list.
    state.g_currentRecordType = kGroupType;
    state.gGroupSubgroups.reset();
    expectNoRecord(Do_KORU_GetNextSubgroupID);
    state.g_currentRecordType = kPersonType;
    expectWrongOrder(Do_KORU_GetNextSubgroupID);
}

TEST_F(GroupCursorTest, TheListsAndElementsAreHeldWhenTheRecordsAreGone) {
    {
        const Pool pool;
        open(crew_);
        open(anna_);
        call(Do_KORU_GetFirstParentID);
        call(Do_KORU_GetFirstMemberID);
        open(fleet_);
        call(Do_KORU_GetFirstSubgroupID);
        state.g_person.reset();
        state.g_group.reset();
        ABAddressBook* book = [ABAddressBook sharedAddressBook];
        for (ABRecord* record :
             {(ABRecord*)anna_, (ABRecord*)ben_, (ABRecord*)crew_, (ABRecord*)board_, (ABRecord*)fleet_}) {
            ASSERT_TRUE([book removeRecord:record]);
        }
        ASSERT_TRUE([book save]);
    }
    EXPECT_EQ(utf8([static_cast<ABRecord*>(state.gCurrentGroupParentID.get()) uniqueId]), idOf(crew_));
    state.g_currentRecordType = kPersonType;
    EXPECT_EQ(call(Do_KORU_GetNextParentID), idOf(board_));
    EXPECT_EQ(call(Do_KORU_GetNextSubgroupID), "END");
    open(board_);
    EXPECT_EQ(call(Do_KORU_GetNextMemberID), idOf(ben_));
}

} // namespace
