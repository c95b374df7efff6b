// A plug-in that needs another library.
#include "tests/host/loader/test_plugin.h"

TEST_PLUGIN_EXPORT int someFunction();

TEST_PLUGIN_EXPORT void FMExternCallProc(FMX_ExternCallPtr call) {
    call->result = static_cast<fmx::ptrtype>(someFunction() + k130ExtnVersion);
}
