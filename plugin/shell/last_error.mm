#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// Returns the error's message when there is no format or it is "TEXT"; for any other format, also an empty
// one, the code.
NSString* lastErrorText(const fmx::DataVect& arguments) {
    switch (arguments.Size()) {
    case 0:
        return [errors.error getError];
    case 1:
        return [[textArgument(arguments, 0) uppercaseString] isEqualToString:@"TEXT"]
                   ? [errors.error getError]
                   : [errors.error getErrorNumber];
    default:
        [errors.error setError:kInvalidParameterCount sysError:0 extDesc:@""];
        return @"!!ERROR!!";
    }
}

} // namespace
} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetLastError(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                                  fmx::Data& result) {
    const auto work = [&]() -> Answer { return lastErrorText(arguments); };
    return runHandler(function, arguments, result, work, kLastErrorFrame);
}
