#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Returns the plug-in's own bundle: what the instance identifier of the host's current message names. nil
// when it cannot be found. The only thing that differs between the systems (own_bundle_linux.mm,
// own_bundle_macos.mm).
[[nodiscard]] NSBundle* ownBundle();

} // namespace koru
