#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// The project's version, which CMake defines.
NSString* const kVersion = @VELOCARD_VERSION;
NSString* const kLongVersion = @"Velocard " VELOCARD_VERSION;

// At most this many units of the format are read; a longer one cannot be the word that is looked for.
constexpr fmx::uint32 kLongestFormat = 1024;

NSString* versionText(const fmx::DataVect& arguments) {
    if (arguments.Size() != 1 || arguments.AtAsText(0).GetSize() > kLongestFormat) {
        return kVersion;
    }
    NSString* format = textArgument(arguments, 0);
    const bool wantsName = format != nil && [format caseInsensitiveCompare:@"Long"] == NSOrderedSame;
    return wantsName ? kLongVersion : kVersion;
}

} // namespace
} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_Version(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                             fmx::Data& result) {
    const auto work = [&]() -> Answer { return versionText(arguments); };
    return runHandler(function, arguments, result, work, kVersionFrame);
}
