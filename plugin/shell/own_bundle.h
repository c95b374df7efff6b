#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Returns the plug-in's own bundle, which it finds by the instance identifier in the host's current message;
// nil when that fails. Defined for each system (own_bundle_linux.mm, own_bundle_macos.mm).
[[nodiscard]] NSBundle* ownBundle();

} // namespace koru
