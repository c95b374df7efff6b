#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// A walk through the entries of a property with several values, by identifier. It walks through the copy that
// OpenProperty made, so that later changes do not show.

// Opens the property of the current record and returns the identifier of its first entry, "END" when it has
// no value; nil when it fails the call, as OpenProperty does and with kNoActiveRecord and
// kInvalidPropertyType.
[[nodiscard]] NSString* openFirstEntry(NSString* name);

// Returns the identifier of the next entry of the property that is open now, "END" after the last; nil with
// kInvalidCallOrder when none is open.
[[nodiscard]] NSString* openNextEntry();

} // namespace koru
