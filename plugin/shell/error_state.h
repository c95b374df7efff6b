#pragma once

#include "plugin/shell/error_codes.h"
#import "plugin/shell/plugin_error.h"
#include "plugin/support/guard.h"
#include "plugin/support/retained.h"

// Fails the current call with the exception's description, which is kept in g_sExceptionTxt; nil has none.
void handleException(NSException* exception);

namespace koru {

// How the last call of an external function ended, kept until the next one begins.
struct ErrorState {
    // The one error object. Made at start-up, never released; nil before.
    koru_PluginError* error = nil;

    // The last code that a call raised, 0 for none. The result of a call that ends with another value is
    // "!!ERROR!!". Zeroed when a call begins.
    std::int32_t g_llasterror = kSuccess;

    // The description of the last exception, or of the failure to save. Released when the next call begins.
    Retained<NSString> g_sExceptionTxt;

    // Released and emptied when a call begins; nothing is ever put here.
    Retained<NSObject> globalError;
};

// Lives as long as the process: nothing here is torn down, neither at shut-down nor at exit.
extern ErrorState& errors;

// Fails the current call: the code and its message, a system code of 0. The extended text is appended to the
// message after a blank, so with the empty one the message ends in a blank; nil appends nothing. The error
// object does not retain it.
void setError(ErrorCode code, NSString* extended = @"");

// Fails the current call by its code alone: the error object stays as it is, so that the message reads
// "Success".
void setErrorCodeOnly(ErrorCode code);

// Runs the work; a platform exception in it fails the current call (handleException). C++ exceptions pass.
template <typename Work>
void guardedCall(Work work) {
    guarded(work, handleException);
}

// Puts the state back to what it is before start-up, for tests.
void resetErrorsForTests();

} // namespace koru
