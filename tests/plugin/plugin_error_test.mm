#import "plugin/shell/error_state.h"
#include "tests/plugin/support.h"
#include <map>

namespace {

class PluginErrorTest : public testing::Test {
  protected:
    Pool pool_;
    koru_PluginError* error_ = [[[koru_PluginError alloc] init] autorelease];
};

const std::map<int, std::string> kMessages = {
    {0, "SUCCESS"},
    {-3, "Invalid Number of Parameters"},
    {-4, "Invalid Parameter value(s)"},
    {-8000, "Exception caught in function"},
    {-8001, "Record does not exist"},
    {-8002, "Failed to delete record"},
    {-8003, "No active record in context"},
    {-8004, "Function call order is invalid"},
    {-8005, "Failed to save record"},
    {-8006, "Invalid property type"},
    {-8007, "UID does not exist"},
    {-8008, "Invalid value for key"},
    {-8009, "Property is not an Address"},
    {-8010, "Invalid property name"},
    {-8011, "Error in property"},
    {-8012, "Error setting property"},
    {-8013, "Error replacing multi-value array"},
    {-8014, "Error setting label"},
    {-8015, "Failed to create address"},
    {-8016, "Failed to add property"},
    {-8017, "Record is read only"},
    {-8018, "Invalid record type"},
    {-8019, "Multi-value array does not exist"},
    {-8020, "Unable to create property"},
    {-8021, "No properties added"},
    {-8022, "Unable to remove property"},
    {-8023, "No properties removed"},
    {-8024, "Unable to set custom property"},
    {-8025, "Unable to obtain bitmap of image"},
    {-8026, "Unable to set image data"},
    {-8027, "Unsupported image type"},
    {-8028, "Unable to access label"},
    {-8029, "Property value cannot be empty"},
    {-8030, "UID is missing and is required for this function"},
    {-8031, "Invalid country code passed to function"},
    {-8032, "Address Book is not started"},
};

TEST_F(PluginErrorTest, EveryCodeHasItsMessage) {
    for (const auto& [code, message] : kMessages) {
        [error_ setError:code sysError:0 extDesc:nil];
        EXPECT_EQ(utf8([error_ getError]), message);
        EXPECT_EQ(utf8([error_ getErrorNumber]), std::to_string(code));
    }
}

TEST_F(PluginErrorTest, OtherCodesAreUndefined) {
    for (const int code : {-5, -1, 1, -2, -7999, -8033, -200, -998, -1201}) {
        [error_ setError:code sysError:0 extDesc:nil];
        EXPECT_EQ(utf8([error_ getError]), "Undefined Error.") << code;
    }
}

TEST_F(PluginErrorTest, AClearedErrorReadsSuccess) {
    EXPECT_EQ(utf8([error_ getError]), "Success");
    [error_ setError:-8003 sysError:0 extDesc:@""];
    [error_ clearError];
    EXPECT_EQ(utf8([error_ getError]), "Success");
    EXPECT_EQ(utf8([error_ getErrorNumber]), "0");
}

TEST_F(PluginErrorTest, AnExtendedTextFollowsAfterOneBlankEvenWhenEmpty) {
    [error_ setError:-8017 sysError:0 extDesc:@""];
    EXPECT_EQ(utf8([error_ getError]), "Record is read only ");
    [error_ setError:-8000 sysError:0 extDesc:@"index 7 is out of range"];
    EXPECT_EQ(utf8([error_ getError]), "Exception caught in function index 7 is out of range");
}

TEST_F(PluginErrorTest, TheLastErrorWinsWhole) {
    [error_ setError:-8000 sysError:0 extDesc:@"more"];
    [error_ setError:-8001 sysError:0 extDesc:nil];
    EXPECT_EQ(utf8([error_ getError]), "Record does not exist");
}

TEST_F(PluginErrorTest, AnExceptionBecomesTheErrorAndKeepsItsText) {
    resetErrorsForTests();
    errors.error = error_;
    guardedCall([&] { [NSException raise:NSRangeException format:@"beyond the %s", "end"]; });
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "beyond the end");
    EXPECT_EQ(utf8([error_ getError]), "Exception caught in function beyond the end");
    EXPECT_EQ(utf8([error_ getErrorNumber]), "-8000");
    resetErrorsForTests();
}

TEST_F(PluginErrorTest, NoExceptionObjectHasNoText) {
    resetErrorsForTests();
    errors.error = error_;
    errors.g_sExceptionTxt = Retained<NSString>::retain(@"of an earlier one");
    handleException(nil);
    EXPECT_EQ(errors.g_sExceptionTxt.get(), nil);
    EXPECT_EQ(utf8([error_ getError]), "Exception caught in function");
    resetErrorsForTests();
}

TEST_F(PluginErrorTest, OtherExceptionsPassTheGuardAndUnwindIt) {
    resetErrorsForTests();
    bool released = false;
    struct Witness {
        bool& released;
        ~Witness() { released = true; }
    };
    EXPECT_THROW(guardedCall([&] {
                     const Witness witness{released};
                     throw std::bad_alloc();
                 }),
                 std::bad_alloc);
    EXPECT_TRUE(released);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

} // namespace
