#import "plugin/records/shared_book.h"

#import "plugin/records/plugin_state.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

namespace {

// The framework raises for an id that is none.
class NoIdTest : public PluginTest {
  protected:
    static id raise(id, SEL, id) {
        [NSException raise:NSInvalidArgumentException format:@"no id"];
        return nil;
    }

    static void expectNoRecord(const std::string& answer) {
        EXPECT_EQ(answer, "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Record does not exist ");
        EXPECT_EQ(lastErrorNumber(), "-8001");
    }

    const ReplacedMethod class_ { [ABAddressBook class], @selector(recordClassFromUniqueId:), raise };
    const ReplacedMethod record_ { [ABAddressBook class], @selector(recordForUniqueId:), raise };
};

TEST_F(NoIdTest, NamesNoRecord) {
    EXPECT_EQ(recordWithId(nil), nil);
    EXPECT_TRUE(isPersonId(nil));
}

TEST_F(NoIdTest, OpensNothing) {
    state.g_person = Retained<ABPerson>::retain(addPerson(@"Anna", @"Smith"));
    state.g_currentRecordType = kGroupType;
    expectNoRecord(call(Do_KORU_Open, {""}));
    EXPECT_FALSE(state.g_person);
    EXPECT_EQ(state.g_currentRecordType, kPersonType);
}

TEST_F(NoIdTest, DeletesNothing) {
    addPerson(@"Anna", @"Smith");
    expectNoRecord(call(Do_KORU_Delete, {""}));
    EXPECT_EQ([[sharedBook() people] count], 1U);
}

} // namespace
