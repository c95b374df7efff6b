#import "plugin/groups/membership.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include <array>

namespace {

// The argument of a replaced method of the framework, and whether it was called.
Retained<NSObject> given;
int calls = 0;
id readOnly = nil;

BOOL refuse(id, SEL, id record) {
    given = Retained<NSObject>::retain(record);
    ++calls;
    return NO;
}

BOOL raise(id, SEL, id) {
    [NSException raise:NSGenericException format:@"the group is full"];
    return YES;
}

id raiseLookingUp(id, SEL, id) {
    [NSException raise:NSGenericException format:@"the index is lost"];
    return nil;
}

id findNothing(id, SEL, id uniqueId) {
    given = Retained<NSObject>::retain(uniqueId);
    ++calls;
    return nil;
}

BOOL isTheReadOnlyOne(id record, SEL) {
    return record == readOnly;
}

struct Function {
    HandlerFunction* handler;
    SEL method; // what it calls in the framework
    bool groups;
};

const std::array kFunctions{
    Function{Do_KORU_AddPerson, @selector(addMember:), false},
    Function{Do_KORU_RemovePerson, @selector(removeMember:), false},
    Function{Do_KORU_AddSubgroup, @selector(addSubgroup:), true},
    Function{Do_KORU_RemoveSubgroup, @selector(removeSubgroup:), true},
};

class MembershipTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        anna_ = addPerson(@"Anna", @"Smith");
        crew_ = addGroup(@"Crew");
        board_ = addGroup(@"Board");
        given.reset();
        calls = 0;
        readOnly = nil;
    }
    void TearDown() override { given.reset(); }

    static void open(ABPerson* person) {
        state.g_person = Retained<ABPerson>::retain(person);
        state.g_currentRecordType = kPersonType;
    }
    static void open(ABGroup* group) {
        state.g_group = Retained<ABGroup>::retain(group);
        state.g_currentRecordType = kGroupType;
    }

    // Returns a person whom the function could add or remove.
    ABRecord* recordFor(const Function& function) const {
        return function.groups ? static_cast<ABRecord*>(board_) : static_cast<ABRecord*>(anna_);
    }

    static void expectFailure(const Function& function, const std::string& argument,
                              const std::string& number, const std::string& text) {
        EXPECT_EQ(call(function.handler, {argument}), "!!ERROR!!") << sel_getName(function.method);
        EXPECT_EQ(lastErrorNumber(), number) << sel_getName(function.method);
        EXPECT_EQ(lastErrorText(), text) << sel_getName(function.method);
    }

    ABPerson* anna_ = nil;
    ABGroup* crew_ = nil;
    ABGroup* board_ = nil;
};

TEST_F(MembershipTest, TheAnswerOfTheFrameworkIsNotAskedFor) {
    open(crew_);
    for (const Function& function : kFunctions) {
        const ReplacedMethod refusing([ABGroup class], function.method, refuse);
        given.reset();
        calls = 0;
        ABRecord* record = recordFor(function);
        EXPECT_EQ(call(function.handler, {utf8([record uniqueId])}), "0");
        EXPECT_EQ(lastErrorText(), "Success");
        EXPECT_EQ(given.get(), record) << sel_getName(function.method);
        EXPECT_EQ(calls, 1);
    }
    EXPECT_EQ(state.g_group.get(), crew_);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
}

TEST_F(MembershipTest, OnlySubgroupsAreAskedWhetherTheyAreGroups) {
    open(crew_);
    for (const Function& function : kFunctions) {
        const ReplacedMethod refusing([ABGroup class], function.method, refuse);
        given.reset();
        calls = 0;
        if (function.groups) {
            expectFailure(function, utf8([anna_ uniqueId]), "-8018", "Invalid record type ");
            EXPECT_EQ(calls, 0);
        } else {
            EXPECT_EQ(call(function.handler, {utf8([board_ uniqueId])}), "0");
            EXPECT_EQ(given.get(), board_) << "passed on";
        }
    }
}

TEST_F(MembershipTest, AReadOnlyCurrentRecordIsRefusedFirst) {
    const ReplacedMethod person([ABPerson class], @selector(isReadOnly), isTheReadOnlyOne);
    const ReplacedMethod group([ABGroup class], @selector(isReadOnly), isTheReadOnlyOne);
    readOnly = anna_;
    open(anna_);
    for (const Function& function : kFunctions) {
        // No group is open, and the identifier is none.
        expectFailure(function, "", "-8017", "Record is read only ");
    }
    readOnly = crew_;
    open(crew_);
    for (const Function& function : kFunctions) {
        expectFailure(function, "nobody", "-8017", "Record is read only ");
    }
}

TEST_F(MembershipTest, AReadOnlyGroupIsRefusedBesideAPerson) {
    const ReplacedMethod person([ABPerson class], @selector(isReadOnly), isTheReadOnlyOne);
    const ReplacedMethod group([ABGroup class], @selector(isReadOnly), isTheReadOnlyOne);
    readOnly = crew_;
    open(crew_);
    for (const bool withPerson : {true, false}) {
        open(withPerson ? anna_ : static_cast<ABPerson*>(nil));
        for (const Function& function : kFunctions) {
            const ReplacedMethod looking([ABAddressBook class], @selector(recordForUniqueId:), findNothing);
            expectFailure(function, utf8([recordFor(function) uniqueId]), "-8017", "Record is read only ");
            EXPECT_EQ(calls, 0) << "asked before the identifier is looked up";
        }
    }
    // A person that is not current may be read-only.
    readOnly = anna_;
    open(anna_);
    state.g_currentRecordType = kGroupType;
    for (const Function& function : kFunctions) {
        EXPECT_EQ(call(function.handler, {utf8([recordFor(function) uniqueId])}), "0");
    }
}

TEST_F(MembershipTest, WithoutAGroupOnlyTheAddingOfAPersonAsksForTheRecordFirst) {
    state.g_currentRecordType = kGroupType;
    for (const Function& function : kFunctions) {
        if (function.handler == Do_KORU_AddPerson) {
            expectFailure(function, "", "-8003", "No active record in context ");
        } else {
            expectFailure(function, "", "-8004", "Function call order is invalid ");
        }
    }
    for (const std::uint32_t type : {kPersonType, 2U}) {
        state.g_currentRecordType = type;
        for (const Function& function : kFunctions) {
            expectFailure(function, utf8([recordFor(function) uniqueId]), "-8004",
                          "Function call order is invalid ");
        }
        EXPECT_EQ(state.g_currentRecordType, type);
    }
}

TEST_F(MembershipTest, TheGroupIsTakenWhateverTheType) {
    open(crew_);
    for (const std::uint32_t type : {kPersonType, 2U, kGroupType}) {
        state.g_currentRecordType = type;
        EXPECT_EQ(call(Do_KORU_AddPerson, {utf8([anna_ uniqueId])}), "0");
        EXPECT_EQ(call(Do_KORU_AddSubgroup, {utf8([board_ uniqueId])}), "0");
        EXPECT_EQ([[crew_ members] count], 1U);
        EXPECT_EQ([[crew_ subgroups] count], 1U);
        EXPECT_EQ(call(Do_KORU_RemovePerson, {utf8([anna_ uniqueId])}), "0");
        EXPECT_EQ(call(Do_KORU_RemoveSubgroup, {utf8([board_ uniqueId])}), "0");
        EXPECT_EQ([[crew_ members] count], 0U);
        EXPECT_EQ([[crew_ subgroups] count], 0U);
        EXPECT_EQ(state.g_currentRecordType, type);
    }
}

TEST_F(MembershipTest, AnEmptyIdentifierIsNotLookedUp) {
    open(crew_);
    for (const Function& function : kFunctions) {
        expectFailure(function, "", "-8007", "UID does not exist ");
    }
    const ReplacedMethod looking([ABAddressBook class], @selector(recordForUniqueId:), findNothing);
    for (const Function& function : kFunctions) {
        calls = 0;
        expectFailure(function, "", "-8007", "UID does not exist ");
        EXPECT_EQ(calls, 0);
        expectFailure(function, "nobody", "-8007", "UID does not exist ");
        EXPECT_EQ(calls, 1);
        EXPECT_TRUE([given.get() isEqual:@"nobody"]);
    }
}

TEST_F(MembershipTest, AMissingIdentifierIsAnEmptyOne) {
    // Outside the function table no number of arguments is refused.
    constexpr short kNoFunction = 1000;
    open(crew_);
    const OwnedExprEnv environment;
    const OwnedDataVect none;
    for (const Function& function : kFunctions) {
        const OwnedData result;
        EXPECT_EQ(function.handler(kNoFunction, *environment, *none, *result), 0);
        EXPECT_EQ(errors.g_llasterror, kUidDoesNotExist);
        EXPECT_EQ(call(function.handler), "!!ERROR!!");
        EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount) << "but the host's table refuses it";
    }
}

TEST_F(MembershipTest, ExceptionsAreTheCallsError) {
    open(crew_);
    for (const Function& function : kFunctions) {
        const std::string id = utf8([recordFor(function) uniqueId]);
        {
            const ReplacedMethod raising([ABGroup class], function.method, raise);
            expectFailure(function, id, "-8000", "Exception caught in function the group is full");
            EXPECT_EQ(call(function.handler, {id}), "!!ERROR!!");
            EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "the group is full");
        }
        const ReplacedMethod looking([ABAddressBook class], @selector(recordForUniqueId:), raiseLookingUp);
        expectFailure(function, id, "-8000", "Exception caught in function the index is lost");
    }
    EXPECT_EQ(state.g_group.get(), crew_);
    EXPECT_EQ([[crew_ members] count] + [[crew_ subgroups] count], 0U);
}

TEST_F(MembershipTest, TheWalksAreLeftAlone) {
    open(crew_);
    call(Do_KORU_AddPerson, {utf8([anna_ uniqueId])});
    call(Do_KORU_GetFirstMemberID);
    call(Do_KORU_GetFirstSubgroupID);
    call(Do_KORU_GetFirstParentID);
    NSArray* lists[] = {state.gGroupMembers.get(), state.gGroupSubgroups.get(), state.gParentGroups.get()};
    for (const Function& function : kFunctions) {
        call(function.handler, {utf8([recordFor(function) uniqueId])});
        call(function.handler, {"nobody"});
    }
    EXPECT_EQ(state.gGroupMembers.get(), lists[0]);
    EXPECT_EQ(state.gGroupSubgroups.get(), lists[1]);
    EXPECT_EQ(state.gParentGroups.get(), lists[2]);
    EXPECT_EQ([lists[0] count], 1U);
    EXPECT_EQ(state.gCurrentMemberIndex, 1U);
}

} // namespace
