// A plug-in that asks for the messages for idle time and for the end of files and sessions, but not for
// start-up and shut-down.
#include "tests/host/loader/test_plugin.h"

#include <string>

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace {

std::string messages;

} // namespace

// The codes of the messages so far, other than those that ask for strings.
TEST_PLUGIN_EXPORT const char* testMessages() {
    return messages.c_str();
}

TEST_PLUGIN_EXPORT void FMExternCallProc(FMX_ExternCallPtr call) {
    gFMX_ExternCallPtr = call;
    if (call->whichCall == kFMXT_GetString) {
        if (call->parm1 == kFMXT_OptionsStr) {
            test_plugin::answerString(call, "SESS1nnnYYn");
        }
    } else {
        messages += std::to_string(call->whichCall) + " ";
    }
}
