#import "plugin/shell/error_state.h"
#include "tests/plugin/framework_double.h"
#include "tests/plugin/good_calls.h"
#include "tests/plugin/host_double.h"
#include "tests/support/raised.h"

namespace {

class FrameworkFailureTest : public GoodCallsTest {
  protected:
    ~FrameworkFailureTest() override { framework_double::stop(); }

    // Makes the call while the message after the next [messages] raises. Returns whether one did.
    bool failAt(const GoodCall& good, int messages);

    std::string raisedBy_; // as framework_double::stop() says it
};

bool FrameworkFailureTest::failAt(const GoodCall& good, int messages) {
    const Pool pool;
    prepare(good);
    const OwnedExprEnv environment;
    const OwnedDataVect arguments = argumentsOf(good);
    const OwnedData result;
    const int made = host_double::livingObjects();
    std::string keptThen;
    NSException* left = raised([&] {
        framework_double::raiseAfter(messages, [&] { keptThen = kept(); });
        EXPECT_EQ(good.handler(good.id(), *environment, *arguments, *result), 0);
    });
    raisedBy_ = framework_double::stop();
    if (raisedBy_.empty()) {
        EXPECT_EQ(left, nil);
        return false;
    }
    SCOPED_TRACE("function " + std::to_string(good.id()) + " " + raisedBy_);
    EXPECT_EQ(kept(), keptThen);
    EXPECT_EQ(host_double::livingObjects(), made);
    if (left != nil) {
        // The answer is written outside the guard, so that a string that cannot be read leaves the handler.
        EXPECT_EQ(utf8([left reason]), raisedBy_ + ": not today");
        EXPECT_TRUE(raisedBy_.ends_with(" length") || raisedBy_.ends_with(" getCharacters:range:"));
        [left release]; // the frame's reference, which no host releases
    } else {
        const bool marksErrors = good.handler != Do_KORU_GetLastError;
        EXPECT_EQ(utf8(stringFromText(result->GetAsText())), marksErrors ? "!!ERROR!!" : "(nil)");
        EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), raisedBy_ + ": not today");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        EXPECT_EQ(lastErrorText(), "Exception caught in function " + raisedBy_ + ": not today");
    }
    EXPECT_EQ(call(Do_KORU_Version), "3.0.3.1");
    return true;
}

// Each message that a function sends to a framework raises once: the call fails with the exception's
// description, the plug-in keeps what it had at that moment, and nothing stays behind.
TEST_F(FrameworkFailureTest, AnExceptionAnywhereIsTheCallsErrorAndLeavesNothingBehind) {
    int failures = 0;
    for (const GoodCall& good : calls()) {
        for (int messages = 0; failAt(good, messages); ++messages) {
            const Objects before = livingObjects();
            failAt(good, messages);
            // An object whose initialisation raises is its class's to release.
            Objects expected = before;
            if (raisedBy_.find(" init") != std::string::npos) {
                ++expected[raisedBy_.substr(0, raisedBy_.find(' '))];
            }
            EXPECT_EQ(livingObjects(), expected) << "function " << good.id() << ", " << raisedBy_;
            ++failures;
        }
    }
    EXPECT_GT(failures, 500);
}

} // namespace
