#pragma once

#include "plugin/shell/error_codes.h"
#import "plugin/shell/plugin_error.h"
#include "plugin/support/guard.h"
#include "plugin/support/retained.h"

// Fails the current call with kExceptionCaught. The exception's description becomes the extended text, which
// g_sExceptionTxt keeps; nil has no description.
void handleException(NSException* exception);

namespace koru {

// How the last call of an external function ended, kept until the next one begins.
struct ErrorState {
    // The one error object. Made at start-up, never released; nil before.
    koru_PluginError* error = nil;

    // The code with which the current call failed, 0 for none. A call that ends with another value than 0
    // results in "!!ERROR!!". Set to 0 when a call begins.
    std::int32_t g_llasterror = kSuccess;

    // The description of the last exception, or of the failure to save. Released when the next call begins.
    Retained<NSString> g_sExceptionTxt;

    // Released when a call begins. Nothing ever sets it.
    Retained<NSObject> globalError;
};

// The one error state. Lives as long as the process: nothing in it is released, neither at shut-down nor at
// exit.
extern ErrorState& errors;

// Fails the current call with the code and its message. The extended text is appended to the message after a
// blank, so that with an empty one the message ends in a blank; nil appends nothing. The extended text is not
// retained, so it must outlive the call.
void setError(ErrorCode code, NSString* extended = @"");

// Fails the current call with the code only: the error object is not set, so that the message is "Success".
void setErrorCodeOnly(ErrorCode code);

// Runs the work. An NSException in it fails the current call (handleException); C++ exceptions pass through.
template <typename Work>
void guardedCall(Work work) {
    guarded(work, handleException);
}

// Resets the state to what it is before start-up. For tests.
void resetErrorsForTests();

} // namespace koru
