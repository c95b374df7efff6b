// Saves that the disk does not take, and saves of records that another program deleted.

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/support.h"
#include "tests/store/fault_vfs.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;

// From the start of the program, so that whatever opens the address book first goes through it.
addressbook::test::FaultVfs disk;

ABAddressBook* anotherBook() {
    return [[[ABAddressBook alloc] init] autorelease];
}

std::string noteIn(ABAddressBook* book, const std::string& id) {
    return utf8([[book recordForUniqueId:string(id)] valueForProperty:kABNoteProperty]);
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
        disk.arm(good, GetParam());
        const std::string answer = call(Do_KORU_Save);
        disk.disarm();
        if (answer == "0") {
            EXPECT_EQ(noteIn(anotherBook(), id), note);
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
        EXPECT_EQ(call(Do_KORU_Save), "0");
        EXPECT_FALSE([[ABAddressBook sharedAddressBook] hasUnsavedChanges]);
        EXPECT_EQ(noteIn(anotherBook(), id), note);
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
                testing::AllOf(HasSubstr("Everything else is saved"), HasSubstr(gone),
                               HasSubstr("deleted by another program"), testing::Not(HasSubstr(kept))));
    EXPECT_EQ(noteIn(anotherBook(), kept), "kept");
    EXPECT_FALSE([book hasUnsavedChanges]);
    NSError* error = nil;
    EXPECT_TRUE([book saveAndReturnError:&error]); // told once
    EXPECT_EQ(error, nil);
}

} // namespace
