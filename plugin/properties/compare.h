#pragma once

#import <Foundation/Foundation.h>

// Whether a value of the current record (GetPropertyValue) equals the text: "0", otherwise "-1". Dates are
// compared to the fraction of a second with the date that the text names, anything else letter by letter. No
// text (nil) equals no value only. nil when it failed the call: kNoActiveRecord, or as GetPropertyValue does.
[[nodiscard]] NSString* compareProperty(NSString* name, NSString* text, NSString* identifier, NSString* key);
