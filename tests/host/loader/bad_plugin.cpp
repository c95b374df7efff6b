// A plug-in that fails at start-up, in the way that the environment variable BAD_PLUGIN names.
#include "tests/host/loader/test_plugin.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace {

// NOLINTBEGIN(misc-redundant-expression): the comparisons are of one compilation, not of all
enum Way {
    kRefusesVersion,
    kNotEnabled,
    kAnswersNothing,
    kThrows,
    kThrowsInt,
    kBadFunctions,
    kThrowsWhenIdle,
    kCrashes,
    kAborts,
    kExits,
    kHangs,
    kHangsAtTheEnd
};

fmx::errcode empty(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) {
    return 0;
}

[[noreturn]] void hang() {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

// Writes where no memory is. (A null pointer would be seen by a sanitizer before the processor sees it.)
void raiseCrash() {
    *reinterpret_cast<volatile int*>(4096) = 1; // NOLINT(performance-no-int-to-ptr)
}

void registerBadFunctions() {
    using test_plugin::registerFunction;
    registerFunction(1, "Bad_Backwards", "Bad_Backwards", 3, 1, empty);
    registerFunction(2, "Bad_Negative", "Bad_Negative", -1, 1, empty);
    registerFunction(3, "Left", "Left ( all ; mine )", 2, 2, empty);
    registerFunction(4, "", "", 0, 0, empty);
    registerFunction(5, "Bad_Good", "Bad_Good", 0, 0, empty);
    registerFunction(6, "bad_good", "bad_good", 0, 0, empty);
    registerFunction(5, "Bad_Twice", "Bad_Twice", 0, 0, empty);
}

} // namespace

TEST_PLUGIN_EXPORT void FMExternCallProc(FMX_ExternCallPtr call) {
    gFMX_ExternCallPtr = call;
    if (call->whichCall == kFMXT_GetString && call->parm1 == kFMXT_OptionsStr) {
        const bool wantsIdle = BAD_PLUGIN == kThrowsWhenIdle || BAD_PLUGIN == kRefusesVersion;
        test_plugin::answerString(call, wantsIdle ? "BAD_1nnYYnn" : "BAD_1nnYnnn");
    }
    if (call->whichCall == kFMXT_Idle) {
        throw std::runtime_error(BAD_PLUGIN == kThrowsWhenIdle ? "too tired"
                                                               : "nobody asked for idle messages");
    }
    if (call->whichCall == kFMXT_Shutdown && BAD_PLUGIN == kHangsAtTheEnd) {
        hang();
    }
    if (call->whichCall != kFMXT_Init) {
        return;
    }
    if (BAD_PLUGIN == kBadFunctions) {
        registerBadFunctions();
    } else {
        test_plugin::registerFunction(7, "Bad_Left", "Bad_Left", 0, 0, empty);
    }
    switch (BAD_PLUGIN) {
    case kRefusesVersion:
        call->result = static_cast<fmx::ptrtype>(kBadExtnVersion);
        break;
    case kNotEnabled:
        call->result = static_cast<fmx::ptrtype>(kDoNotEnable);
        break;
    case kAnswersNothing:
        break;
    case kCrashes:
        raiseCrash();
        break;
    case kAborts:
        std::abort();
    case kExits:
        std::exit(0); // NOLINT(concurrency-mt-unsafe)
    case kHangs:
        hang();
        break;
    case kThrows:
        throw std::runtime_error("no paper");
    case kThrowsInt:
        throw 42; // NOLINT(hicpp-exception-baseclass): what this is about
    default:
        call->result = k80ExtnVersion;
    }
}
// NOLINTEND(misc-redundant-expression)
