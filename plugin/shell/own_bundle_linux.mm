#import "plugin/shell/own_bundle.h"

#include "plugin/support/host_interface.h"
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>

namespace koru {
namespace {

// Returns the file of the library whose handle the host gave; without a handle, of the library that this code
// is in.
const char* ownFile() {
    // The host passes the handle as a number.
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

// The folder of the library also has Resources/, which makes it a bundle.
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
