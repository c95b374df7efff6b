#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Compares a value of the current record (GetPropertyValue) with the text. Returns "0" when they are equal,
// otherwise "-1". Dates are
// compared to the fraction of a second with the date that the text names, anything else letter by letter. No
// text (nil) equals no value only. Returns nil when it fails the call: kNoActiveRecord, or as
// GetPropertyValue does.
[[nodiscard]] NSString* compareProperty(NSString* name, NSString* text, NSString* identifier, NSString* key);

} // namespace koru
