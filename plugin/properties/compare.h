#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Compares a value of the current record (GetPropertyValue) with the text. Returns "0" when they are equal,
// otherwise "-1". A date is compared, to the fraction of a second, with the date that the text names;
// anything else by its text, literally. nil equals only a missing value. Returns nil when it fails the call:
// kNoActiveRecord, or as GetPropertyValue does.
[[nodiscard]] NSString* compareProperty(NSString* name, NSString* text, NSString* identifier, NSString* key);

} // namespace koru
