#import "plugin/shell/own_bundle.h"

#include "plugin/support/host_interface.h"
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>

namespace koru {
namespace {

// Returns the file of the library that the host's handle stands for; without a handle, of the one this code
// is in.
const char* ownFile() {
    // The host hands the handle over as a number.
    auto* handle =
        reinterpret_cast<void*>(gFMX_ExternCallPtr->instanceID); // NOLINT(performance-no-int-to-ptr)
    const link_map* library = nullptr;
    if (handle != nullptr && dlinfo(handle, RTLD_DI_LINKMAP, static_cast<void*>(&library)) == 0 &&
        library->l_name[0] != '\0') {
        return library->l_name;
    }
    Dl_info info;
    return dladdr(reinterpret_cast<const void*>(&ownBundle), &info) != 0 ? info.dli_fname : nullptr;
}

} // namespace

// Resources/ stands beside the library, in one folder with it.
NSBundle* ownBundle() {
    const char* file = ownFile();
    char absolute[PATH_MAX];
    if (file == nullptr || realpath(file, absolute) == nullptr) {
        return nil;
    }
    NSString* path = [[NSFileManager defaultManager] stringWithFileSystemRepresentation:absolute
                                                                                 length:strlen(absolute)];
    return [NSBundle bundleWithPath:[path stringByDeletingLastPathComponent]];
}

} // namespace koru
