#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Lets go of everything that the state holds but the record types, whether the record is new, and the places
// of the walks; then unloads the Address Book framework and loads it again. Returns "0". The first time there
// is no framework to unload yet: as when unloading or loading fails, that is logged and the process ends with
// status 1, on purpose.
[[nodiscard]] NSString* reload();

} // namespace koru
