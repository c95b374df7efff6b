#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/good_calls.h"
#include "tests/plugin/host_double.h"
#include <algorithm>

namespace {

class HostFailureTest : public GoodCallsTest {
  protected:
    ~HostFailureTest() override { host_double::reset(); }

    // Makes the call while the call of the host after the next [calls] fails with [code]. Returns whether one
    // did.
    bool failAt(const GoodCall& good, int calls, int code);
};

bool HostFailureTest::failAt(const GoodCall& good, int calls, int code) {
    const Pool pool;
    prepare(good);
    const OwnedExprEnv environment;
    const OwnedDataVect arguments = argumentsOf(good);
    const OwnedData result;
    const int made = host_double::livingObjects();
    const auto keptNow = [] {
        return kept() + std::to_string(errors.g_llasterror) + " " + utf8(errors.g_sExceptionTxt.get());
    };
    std::string keptThen;
    int thrown = 0;
    host_double::failAfter(calls, code, [&] { keptThen = keptNow(); });
    try {
        EXPECT_EQ(good.handler(good.id(), *environment, *arguments, *result), 0);
    } catch (const std::bad_alloc&) {
        thrown = 1;
    } catch (const std::exception&) {
        thrown = 2;
    }
    const bool failed = host_double::hasFailed();
    host_double::reset();
    SCOPED_TRACE("function " + std::to_string(good.id()) + ", call " + std::to_string(calls));
    EXPECT_EQ(host_double::livingObjects(), made);
    EXPECT_EQ(thrown, failed ? code : 0);
    if (failed) {
        EXPECT_EQ(keptNow(), keptThen);
        EXPECT_EQ(call(Do_KORU_Version), "3.0.3.1");
    } else {
        const bool hasNoApplication = good.handler == Do_KORU_Display;
        EXPECT_EQ(errors.g_llasterror, hasNoApplication ? kAddressBookNotStarted : kSuccess);
    }
    return failed;
}

TEST_F(HostFailureTest, EveryFunctionHasAGoodCall) {
    const std::vector<GoodCall> all = calls();
    for (const ExternalFunction& function : externalFunctions()) {
        EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const GoodCall& good) {
            return good.handler == function.handler;
        })) << function.id;
    }
}

// Each call of the host that a function makes fails once with either code: the exception passes, the plug-in
// keeps what it had at that moment, nothing stays behind, and the next call works.
TEST_F(HostFailureTest, AFailureOfTheHostPassesAndLeavesNothingBehind) {
    for (const GoodCall& good : calls()) {
        int failures = 0;
        while (failAt(good, failures, 1)) {
            const Objects before = livingObjects();
            failAt(good, failures, 2);
            EXPECT_EQ(livingObjects(), before) << "function " << good.id() << ", call " << failures;
            ++failures;
        }
        EXPECT_GE(failures, 2) << "function " << good.id();
    }
}

} // namespace
