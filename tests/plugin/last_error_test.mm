#import "plugin/shell/error_state.h"
#include "tests/plugin/support.h"

namespace {

class LastErrorTest : public PluginTest {};

TEST_F(LastErrorTest, AfterASuccessfulCall) {
    EXPECT_EQ(call(Do_KORU_Version), "3.0.3.1");
    EXPECT_EQ(call(Do_KORU_GetLastError), "Success");
    EXPECT_EQ(call(Do_KORU_GetLastError, {"x"}), "0");
}

TEST_F(LastErrorTest, TextInAnyLetterCaseAsksForTheMessage) {
    setError(kRecordReadOnly);
    for (const char* format : {"TEXT", "text", "Text", "tExT"}) {
        EXPECT_EQ(call(Do_KORU_GetLastError, {format}), "Record is read only ") << format;
    }
    for (const char* format : {"NUM", "", "TEXT ", "texts", "0"}) {
        EXPECT_EQ(call(Do_KORU_GetLastError, {format}), "-8017") << format;
    }
    EXPECT_EQ(call(Do_KORU_GetLastError), "Record is read only ");
}

TEST_F(LastErrorTest, AskingChangesNothing) {
    errors.g_sExceptionTxt = Retained<NSString>::retain(@"kept");
    errors.globalError = Retained<NSObject>::adopt([[NSObject alloc] init]);
    setError(kExceptionCaught, errors.g_sExceptionTxt.get());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(call(Do_KORU_GetLastError), "Exception caught in function kept");
        EXPECT_EQ(call(Do_KORU_GetLastError, {"NUM"}), "-8000");
        EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
        EXPECT_TRUE(errors.g_sExceptionTxt);
        EXPECT_TRUE(errors.globalError);
    }
}

TEST_F(LastErrorTest, AWrongNumberOfArgumentsIsAnErrorOfItsOwn) {
    EXPECT_EQ(call(Do_KORU_GetLastError, {"TEXT", "NUM"}), "!!ERROR!!");
    EXPECT_EQ(call(Do_KORU_GetLastError), "Invalid Number of Parameters ");
    EXPECT_EQ(call(Do_KORU_GetLastError, {"NUM"}), "-3");
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(LastErrorTest, TheVersionTakesAFormat) {
    for (const char* format : {"long", "LONG", "Long"}) {
        EXPECT_EQ(call(Do_KORU_Version, {format}), "Velocard 3.0.3.1") << format;
    }
    for (const char* format : {"Long ", " Long", "short", "", "Lon", "Longer"}) {
        EXPECT_EQ(call(Do_KORU_Version, {format}), "3.0.3.1") << format;
    }
    EXPECT_EQ(call(Do_KORU_Version, {"Long" + std::string(2000, ' ')}), "3.0.3.1");
    EXPECT_EQ(call(Do_KORU_Version, {"Long", "Long"}), "3.0.3.1");
    EXPECT_EQ(lastErrorText(), "Success");
}

} // namespace
