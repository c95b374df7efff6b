#import "plugin/shell/handler_frame.h"

#include "plugin/shell/function_table.h"
#include "plugin/support/pool.h"

namespace koru {
namespace {

constexpr const char* kErrorMarker = "!!ERROR!!";

void clearLastError() {
    errors.globalError.reset();
    [errors.error clearError];
    errors.g_llasterror = kSuccess;
}

// Runs the frame inside the caller's autorelease pool. Writing the result is outside the guard of the work.
void runInPool(short function, const fmx::DataVect& arguments, fmx::Data& result, const FrameRules& rules,
               Answer (*fetchAnswer)(void* work), void* work) {
    if (rules.clearsError) {
        clearLastError();
    }
    OwnedText text;
    if (rules.clearsExceptionText) {
        errors.g_sExceptionTxt.reset();
    }
    Answer answer;
    if (rules.checksCount && !acceptsCount(function, arguments.Size())) {
        // The error object is not set, so that the message is still "Success".
        setErrorCodeOnly(kInvalidParameterCount);
    } else {
        guardedCall([&] { answer = fetchAnswer(work); });
    }
    if (answer.isWritten()) {
        return;
    }
    if (rules.marksErrors && errors.g_llasterror != kSuccess) {
        text->Assign(kErrorMarker);
    } else {
        assignString(*text, answer.text());
    }
    result.SetAsText(*text, result.GetLocale(), fmx::Data::kDTText);
}

} // namespace

fmx::errcode runFrame(short function, const fmx::DataVect& arguments, fmx::Data& result,
                      const FrameRules& rules, Answer (*fetchAnswer)(void* work), void* work) {
    Retained<NSException> escaping;
    {
        const Pool pool;
        guarded([&] { runInPool(function, arguments, result, rules, fetchAnswer, work); },
                [&](NSException* exception) { escaping = Retained<NSException>::retain(exception); });
    }
    if (escaping) {
        // Raised after the pool is drained, which would otherwise release it. The host may never release it.
        [escaping.leak() raise];
    }
    return 0;
}

} // namespace koru
