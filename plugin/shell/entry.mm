#include "plugin/shell/entry.h"

#include "plugin/notify/run_script.h"
#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#import "plugin/shell/run_loop.h"
#include "plugin/shell/strings.h"
#include "plugin/support/pool.h"
#include <cstdint>

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace koru {
namespace {

// The host's interface versions with which the plug-in works, and the one it declares.
constexpr std::uint16_t kOldestHostVersion = 50;
constexpr std::uint16_t kNewestHostVersion = 255;
constexpr int kOwnVersion = 54;

// The idle level at which the user, too, is idle: only then is anything done.
constexpr fmx::uchar kUserIdle = 0;

bool acceptsHostVersion(std::uint16_t version) {
    return static_cast<std::uint16_t>(version - kOldestHostVersion) <=
           kNewestHostVersion - kOldestHostVersion;
}

void startUp(FMX_ExternCallStruct& message) {
    if (!acceptsHostVersion(static_cast<std::uint16_t>(message.extnVersion))) {
        message.result = static_cast<fmx::ptrtype>(kBadExtnVersion);
        return;
    }
    registerFunctions();
    Do_Init();
    message.result = kOwnVersion;
}

void dispatch(FMX_ExternCallStruct& message) {
    switch (message.whichCall) {
    case kFMXT_Init:
        startUp(message);
        break;
    case kFMXT_Idle:
        if (message.parm1 == kUserIdle) {
            turnRunLoop();
            runScript();
        }
        break;
    case kFMXT_Shutdown:
        // Nothing else is torn down: what the plug-in holds stays until the process ends.
        unregisterFunctions();
        break;
    case kFMXT_DoAppPreferences:
        Do_Config();
        break;
    case kFMXT_GetString:
        Do_GetString(message.parm1, static_cast<unsigned int>(message.parm2), static_cast<int>(message.parm3),
                     reinterpret_cast<unsigned short*>(message.result)); // NOLINT(performance-no-int-to-ptr)
        break;
    default:
        break;
    }
}

} // namespace
} // namespace koru

using namespace koru;

void Do_Init() {
    // Not released: after a second start-up, other objects may still use the old text.
    (void)errors.g_sExceptionTxt.leak();
    errors.error = [[koru_PluginError alloc] init];
    state.g_lastSearchType = kPersonType;
}

void Do_Config() {}

void FMExternCallProc(FMX_ExternCallPtr message) {
    gFMX_ExternCallPtr = message;
    const Pool pool;
    guardedCall([&] { dispatch(*message); });
}
