#import "plugin/shell/own_bundle.h"

#include "plugin/support/host_interface.h"
#include <CoreFoundation/CoreFoundation.h>

namespace koru {

NSBundle* ownBundle() {
    // The host passes the bundle reference as a number.
    auto bundle = reinterpret_cast<CFBundleRef>(gFMX_ExternCallPtr->instanceID);
    if (bundle == nullptr) {
        return nil;
    }
    CFURLRef location = CFBundleCopyBundleURL(bundle);
    if (location == nullptr) {
        return nil;
    }
    NSString* path = [[[(NSURL*)location path] retain] autorelease];
    CFRelease(location);
    return [NSBundle bundleWithPath:path];
}

} // namespace koru
