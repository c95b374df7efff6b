#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// The walk through the entries of a property with several values. It hands out the entries' identifiers and
// goes through the copy that OpenProperty made, so that it sees the entries as they were then.

// Opens the property of the current record and returns the identifier of its first entry, "END" when it has
// no value; nil when it fails the call, as OpenProperty does and with kNoActiveRecord and
// kInvalidPropertyType.
[[nodiscard]] NSString* openFirstEntry(NSString* name);

// Returns the identifier of the next entry of whatever property is open by now, "END" behind the last; nil
// with kInvalidCallOrder when none is open.
[[nodiscard]] NSString* openNextEntry();

} // namespace koru
