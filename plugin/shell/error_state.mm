#import "plugin/shell/error_state.h"

#include "plugin/support/immortal.h"

namespace koru {
namespace {
constinit Immortal<ErrorState> storage;
}

constinit ErrorState& errors = storage.value;

void setError(ErrorCode code, NSString* extended) {
    errors.g_llasterror = code;
    [errors.error setError:code sysError:0 extDesc:extended];
}

void setErrorCodeOnly(ErrorCode code) {
    errors.g_llasterror = code;
}

void resetErrorsForTests() {
    errors = ErrorState{};
}

} // namespace koru

using namespace koru;

void handleException(NSException* exception) {
    errors.g_sExceptionTxt.reset();
    if (exception != nil) {
        errors.g_sExceptionTxt = Retained<NSString>::retain([exception description]);
    }
    setError(kExceptionCaught, errors.g_sExceptionTxt.get());
}
