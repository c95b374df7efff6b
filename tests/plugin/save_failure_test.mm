// Saves that fail because of the disk, and saves of records that another program has deleted.

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/support.h"
#include "tests/support/fault_vfs.h"
#include "tests/support/system_calls.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <optional>

@interface ABAddressBook (ForTests)
// The framework's own; see record.h there.
+ (void)closeSharedAddressBook;
@end

namespace {

using testing::AllOf;
using testing::HasSubstr;

// Set at the start of the program, so that every connection to the address book uses it.
support::FaultVfs disk;

ABAddressBook* anotherBook() {
    return [[[ABAddressBook alloc] init] autorelease];
}

std::string noteIn(ABAddressBook* book, const std::string& id) {
    return utf8([[book recordForUniqueId:string(id)] valueForProperty:kABNoteProperty]);
}

NSUInteger membersIn(ABAddressBook* book, ABGroup* group) {
    return [[(ABGroup*)[book recordForUniqueId:[group uniqueId]] members] count];
}

// A new group with this member, not saved.
ABGroup* unsavedGroupOf(ABPerson* member) {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    ABGroup* group = [[[ABGroup alloc] initWithAddressBook:book] autorelease];
    EXPECT_TRUE([book addRecord:group]);
    EXPECT_TRUE([group addMember:member]);
    return group;
}

class SaveFailureTest : public PluginTest, public testing::WithParamInterface<int> {
  protected:
    ~SaveFailureTest() override { disk.disarm(); }
};

TEST_P(SaveFailureTest, IsToldAndKeepsWhatIsUnsavedUntilALaterSave) {
    const std::string id = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    int failures = 0;
    for (int good = 0;; ++good) {
        SCOPED_TRACE(good);
        ASSERT_LT(good, 200);
        ASSERT_EQ(call(Do_KORU_Open, {id}), "0");
        const std::string before = call(Do_KORU_GetValueForProperty, {"note"});
        const std::string note = "note " + std::to_string(good);
        ASSERT_EQ(call(Do_KORU_SetValueForProperty, {"note", note}), "0");
        ABGroup* group = unsavedGroupOf((ABPerson*)currentRecord());
        const NSUInteger groups = [[anotherBook() groups] count];
        disk.arm(good, GetParam());
        const std::string answer = call(Do_KORU_Save);
        disk.disarm();
        if (answer == "0") {
            EXPECT_EQ(noteIn(anotherBook(), id), note);
            EXPECT_EQ(membersIn(anotherBook(), group), 1U);
            break;
        }
        ++failures;
        EXPECT_EQ(answer, "!!ERROR!!");
        EXPECT_THAT(utf8(errors.g_sExceptionTxt.get()),
                    testing::AllOf(HasSubstr("The address book /"), HasSubstr("again.")));
        EXPECT_EQ(lastErrorNumber(), "-8005");
        EXPECT_EQ(lastErrorText(), "Failed to save record ");
        EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"note"}), note);
        EXPECT_TRUE([[ABAddressBook sharedAddressBook] hasUnsavedChanges]);
        EXPECT_EQ(noteIn(anotherBook(), id), before.empty() ? "(nil)" : before);
        EXPECT_EQ([[group members] count], 1U);
        EXPECT_EQ([[anotherBook() groups] count], groups);
        EXPECT_EQ(call(Do_KORU_Save), "0");
        EXPECT_FALSE([[ABAddressBook sharedAddressBook] hasUnsavedChanges]);
        EXPECT_EQ(noteIn(anotherBook(), id), note);
        EXPECT_EQ(membersIn(anotherBook(), group), 1U);
    }
    EXPECT_GT(failures, 5);
}

INSTANTIATE_TEST_SUITE_P(Codes, SaveFailureTest,
                         testing::Values(SQLITE_FULL, SQLITE_IOERR_WRITE, SQLITE_INTERRUPT),
                         [](const auto& code) {
                             return std::string(code.param == SQLITE_FULL        ? "DiskFull"
                                                : code.param == SQLITE_INTERRUPT ? "Interrupted"
                                                                                 : "DiskError");
                         });

class DeletedElsewhereTest : public PluginTest {};

TEST_F(DeletedElsewhereTest, IsToldByTheSaveAndTheOtherChangesAreKept) {
    const std::string gone = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string kept = utf8([addPerson(@"Ben", @"Smith") uniqueId]);
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    [[book recordForUniqueId:string(kept)] setValue:@"kept" forProperty:kABNoteProperty];
    ASSERT_EQ(call(Do_KORU_Open, {gone}), "0");
    ASSERT_EQ(call(Do_KORU_SetValueForProperty, {"note", "lost"}), "0");
    ABAddressBook* other = anotherBook();
    [other removeRecord:[other recordForUniqueId:string(gone)]];
    ASSERT_TRUE([other save]);
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8005");
    EXPECT_THAT(lastErrorText(),
                testing::AllOf(testing::StartsWith("Failed to save record Everything else is saved"),
                               HasSubstr(gone), HasSubstr("deleted by another program"),
                               testing::Not(HasSubstr(kept))));
    EXPECT_EQ(noteIn(anotherBook(), kept), "kept");
    EXPECT_FALSE([book hasUnsavedChanges]);
    NSError* error = nil;
    EXPECT_TRUE([book saveAndReturnError:&error]); // told once
    EXPECT_EQ(error, nil);
}

TEST_F(DeletedElsewhereTest, IsToldByTheNextSaveWhenADeletionSaved) {
    const std::string gone = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    const std::string deleted = utf8([addPerson(@"Ben", @"Smith") uniqueId]);
    ASSERT_EQ(call(Do_KORU_Open, {gone}), "0");
    ASSERT_EQ(call(Do_KORU_SetValueForProperty, {"note", "lost"}), "0");
    ABAddressBook* other = anotherBook();
    [other removeRecord:[other recordForUniqueId:string(gone)]];
    ASSERT_TRUE([other save]);
    EXPECT_EQ(call(Do_KORU_Delete, {deleted}), "0");
    EXPECT_EQ([anotherBook() recordForUniqueId:string(deleted)], nil);
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8005");
    EXPECT_THAT(lastErrorText(), AllOf(HasSubstr("Everything else is saved"), HasSubstr(gone)));
    EXPECT_EQ(call(Do_KORU_Save), "0");
}

TEST_F(DeletedElsewhereTest, ResultsThatNobodyHasOpenedKeepTheirIdsAndTellWhatIsLost) {
    std::string person;
    std::string group;
    {
        const Pool pool; // so that nobody holds them any more
        person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
        group = utf8([addGroup(@"Harbour") uniqueId]);
    }
    ASSERT_EQ(call(Do_KORU_Search, {"person", "lastname", "", "", "Smith", "Equal"}), "1");
    ASSERT_EQ(call(Do_KORU_Search, {"group", "name", "", "", "Harbour", "Equal"}), "1");
    ABAddressBook* other = anotherBook();
    [other removeRecord:[other recordForUniqueId:string(person)]];
    [other removeRecord:[other recordForUniqueId:string(group)]];
    ASSERT_TRUE([other save]);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(call(Do_KORU_OpenFirstRecord, {"person"}), person);
        EXPECT_EQ(call(Do_KORU_OpenFirstRecord, {"group"}), group);
    }
    EXPECT_EQ(call(Do_KORU_GetFirstMemberID), "END");
    ASSERT_EQ(call(Do_KORU_SetValueForProperty, {"name", "lost", "group"}), "0");
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8005");
    EXPECT_THAT(lastErrorText(), AllOf(HasSubstr("deleted by another program"), HasSubstr(group)));
    EXPECT_EQ(call(Do_KORU_Save), "0");
    ASSERT_EQ(call(Do_KORU_SetValueForProperty, {"note", "lost", "person"}), "0");
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_THAT(lastErrorText(), HasSubstr(person));
    EXPECT_EQ(call(Do_KORU_Open, {person}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8001");
}

TEST_F(DeletedElsewhereTest, ACircleOfGroupsIsToldAndTheOtherChangesAreKept) {
    ABGroup* inner = addGroup(@"Inner");
    ABGroup* outer = addGroup(@"Outer");
    const std::string person = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    [[book recordForUniqueId:string(person)] setValue:@"kept" forProperty:kABNoteProperty];
    ASSERT_EQ(call(Do_KORU_Open, {utf8([outer uniqueId])}), "0");
    ASSERT_EQ(call(Do_KORU_AddSubgroup, {utf8([inner uniqueId])}), "0");
    ABAddressBook* other = anotherBook();
    ABGroup* theirs = (ABGroup*)[other recordForUniqueId:[inner uniqueId]];
    ASSERT_TRUE([theirs addSubgroup:(ABGroup*)[other recordForUniqueId:[outer uniqueId]]]);
    ASSERT_TRUE([other save]);
    EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8005");
    EXPECT_THAT(lastErrorText(), AllOf(HasSubstr("Everything else is saved"),
                                       HasSubstr("\"Inner\" was not put into \"Outer\""),
                                       HasSubstr("take \"Outer\" out of \"Inner\" and try again")));
    EXPECT_EQ(noteIn(anotherBook(), person), "kept");
    EXPECT_EQ([[theirs subgroups] count], 1U);
    EXPECT_EQ([[(ABGroup*)[anotherBook() recordForUniqueId:[outer uniqueId]] subgroups] count], 0U);
    EXPECT_EQ(call(Do_KORU_Save), "0");
}

// The disk with the address book is mounted for reading only.
class ReadOnlyDiskTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        anna_ = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
        mount();
    }
    void TearDown() override {
        disk_.reset();
        close();
    }
    void mount() {
        close();
        disk_.emplace(std::getenv("ADDRESSBOOK_HOME"));
    }
    // The file is closed when none of its records is held any more.
    static void close() {
        resetStateForTests();
        [ABAddressBook closeSharedAddressBook];
        Do_Init();
    }

    std::string anna_;
    std::optional<support::ReadOnlyDisk> disk_;
};

TEST_F(ReadOnlyDiskTest, ItIsReadAndSearchedAndNothingIsLostSilently) {
    ASSERT_EQ(call(Do_KORU_Open, {anna_}), "0");
    EXPECT_TRUE([currentRecord() isReadOnly]);
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"firstname"}), "Anna");
    EXPECT_EQ(call(Do_KORU_SetValueForProperty, {"note", "new"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8017");
    EXPECT_NE(call(Do_KORU_Delete, {anna_}), "0");
    for (const char* kind : {"person", "group"}) {
        EXPECT_NE(call(Do_KORU_New, {kind}), "!!ERROR!!");
        EXPECT_EQ(call(Do_KORU_Save), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8005");
        EXPECT_THAT(
            utf8(errors.g_sExceptionTxt.get()),
            HasSubstr("AddressBook.db may only be read: make the file, its folder and its disk writable"));
        EXPECT_EQ(currentRecord(), nil);
        EXPECT_EQ(call(Do_KORU_Save), "0"); // nothing is unsaved any more
    }
    NSArray* people = [[ABAddressBook sharedAddressBook] people];
    ASSERT_EQ([people count], 1U);
    EXPECT_EQ(utf8([[people objectAtIndex:0] uniqueId]), anna_);
}

TEST_F(ReadOnlyDiskTest, EveryChangeIsRefusedInItsOwnWay) {
    const auto codeOf = [](HandlerFunction handler, std::initializer_list<std::string> arguments = {}) {
        const std::string answer = call(handler, arguments);
        return answer == "!!ERROR!!" ? lastErrorNumber() : answer;
    };
    ASSERT_EQ(call(Do_KORU_Open, {anna_}), "0");
    EXPECT_EQ(codeOf(Do_KORU_SetValueForProperty, {"note", "new"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_DeleteValueForProperty, {"note"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_SetValueForUID, {"phone", "x", "1"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_DeleteValueForUID, {"phone", "x"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_SetLabelForUID, {"phone", "x", "home"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_AddMV, {"phone", "1", "home"}), "-8017");
    EXPECT_EQ(codeOf(Do_KORU_AddAddress, {"home", "1 Quay", "", "", "", "", "gb"}), "-8017");
    for (HandlerFunction* membership :
         {Do_KORU_AddPerson, Do_KORU_RemovePerson, Do_KORU_AddSubgroup, Do_KORU_RemoveSubgroup}) {
        EXPECT_EQ(codeOf(*membership, {anna_}), "-8017");
    }
    EXPECT_EQ(codeOf(Do_KORU_AddCustomField, {"person", "Customer"}), "-8020");
    EXPECT_EQ(codeOf(Do_KORU_RemoveCustomField, {"person", "Customer"}), "-8022") << "whatever the name";
    EXPECT_EQ(codeOf(Do_KORU_SetCustomField, {"person", "First", "Zoe"}), "-8024");
    EXPECT_EQ(codeOf(Do_KORU_SetImage, {""}), "-8026");
    EXPECT_EQ(codeOf(Do_KORU_Delete, {anna_}), "-8001");
    EXPECT_EQ(codeOf(Do_KORU_ClearAll, {"", "", "0"}), "0") << "what cannot be removed is passed over";
    EXPECT_EQ(codeOf(Do_KORU_Save), "0") << "nothing is unsaved";
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"firstname"}), "Anna");
}

} // namespace
