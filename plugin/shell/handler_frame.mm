#import "plugin/shell/handler_frame.h"

#include "plugin/shell/function_table.h"
#include "plugin/support/pool.h"

namespace {

constexpr const char* kErrorMarker = "!!ERROR!!";

void clearLastError() {
    errors.globalError.reset();
    [errors.error clearError];
    errors.g_llasterror = kSuccess;
}

} // namespace

fmx::errcode runFrame(short function, const fmx::DataVect& arguments, fmx::Data& result,
                      const FrameRules& rules, Answer (*fetchAnswer)(void* work), void* work) {
    const Pool pool;
    if (rules.clearsError) {
        clearLastError();
    }
    fmx::TextAutoPtr text;
    if (rules.clearsExceptionText) {
        errors.g_sExceptionTxt.reset();
    }
    Answer answer;
    if (rules.checksCount && !acceptsCount(function, arguments.Size())) {
        // The error object is not told, so that the message still reads "Success".
        setErrorCodeOnly(kInvalidParameterCount);
    } else {
        guardedCall([&] { answer = fetchAnswer(work); });
    }
    if (answer.isWritten()) {
        return 0;
    }
    if (rules.marksErrors && errors.g_llasterror != kSuccess) {
        text->Assign(kErrorMarker);
    } else {
        assignString(*text, answer.text());
    }
    result.SetAsText(*text, result.GetLocale(), fmx::Data::kDTText);
    return 0;
}
