#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Releases every object that the state holds, then unloads the Address Book framework and loads it again.
// Record types, gNewRecord and the indexes of the walks stay. Returns "0". When unloading or loading fails,
// that is logged and the process ends with status 1, on purpose; the first call always fails so, as no
// framework is known yet.
[[nodiscard]] NSString* reload();

} // namespace koru
