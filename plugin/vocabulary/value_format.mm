#import "plugin/vocabulary/value_format.h"

#import "plugin/records/plugin_state.h"
#import "plugin/vocabulary/address_keys.h"
#import "plugin/vocabulary/property_names.h"

namespace koru {
namespace {

// The calendar units from year to second, as numbers, which are the same in every version of Foundation.
constexpr NSUInteger kDateAndTimeUnits = 4 | 8 | 16 | 32 | 64 | 128;

// Returns the Gregorian calendar in the system's time zone. Made once, as making one is slow.
NSCalendar* gregorianCalendar() {
    static NSCalendar* const calendar = [[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar];
    NSTimeZone* zone = [NSTimeZone systemTimeZone];
    if (![zone isEqual:[calendar timeZone]]) {
        [calendar setTimeZone:zone];
    }
    return calendar;
}

// Stores a date in the result as a time stamp of the Gregorian calendar in the system's time zone, to the
// second. Returns nothing when the host has no such date, as after the year 4000.
Answer writeTimeStamp(NSDate* date, fmx::Data& result) {
    NSDateComponents* parts = [gregorianCalendar() components:static_cast<NSCalendarUnit>(kDateAndTimeUnits)
                                                     fromDate:date];
    OwnedDateTime stamp;
    const fmx::errcode dateError =
        stamp->SetNormalizedDate(static_cast<fmx::int16>([parts month]), static_cast<fmx::int16>([parts day]),
                                 static_cast<fmx::int16>([parts year]));
    const fmx::errcode timeError = stamp->SetNormalizedTime(
        [parts hour], static_cast<fmx::int16>([parts minute]), static_cast<fmx::int16>([parts second]), 0);
    if (dateError != 0 || timeError != 0) {
        return {};
    }
    result.SetAsTimeStamp(*stamp, fmx::Data::kDTTimeStamp);
    return Answer::written();
}

// Returns a value's description; empty text for nil.
Answer textAnswer(id value) {
    return [value description];
}

// Finds the value for GetPropertyValue once the property is open. Sets [value] step by step, so that an
// exception leaves what was found by then, for instance an address whose field could not be read.
void findValue(NSString* identifier, NSString* key, id& value) {
    if (identifier == nil) {
        value = [currentRecord() valueForProperty:state.gCurrentProperty.get()];
    } else {
        if (!state.gValues) {
            setError(kInvalidPropertyType);
            return;
        }
        const NSUInteger index = [state.gValues.get() indexForIdentifier:identifier];
        if (index == static_cast<NSUInteger>(NSNotFound)) {
            setError(kUidDoesNotExist);
            return;
        }
        value = [state.gValues.get() valueAtIndex:index];
    }
    if (key == nil) {
        return;
    }
    if (![value isKindOfClass:[NSDictionary class]]) {
        value = nil;
        setError(kNotAnAddress);
        return;
    }
    NSString* field = toKeyString(key);
    if (field == nil) {
        value = nil;
        setError(kInvalidKey);
        return;
    }
    value = [value objectForKey:field];
}

} // namespace

Answer singleValueAnswer(id value, ABPropertyType type, NSString* name, fmx::Data& result) {
    if (value == nil) {
        return {};
    }
    // Tests one bit, on purpose: arrays, dictionaries and data have it as well, and are treated as dates.
    if ((type & kABDateProperty) != 0) {
        return writeTimeStamp(value, result);
    }
    // Only in this spelling: "personflags" gives the number.
    if ([name isEqualToString:@"Person Flags"]) {
        return ([value intValue] & kABShowAsMask) != 0 ? @"ShowAsCompany" : @"ShowAsPerson";
    }
    return textAnswer(value);
}

Answer entryAnswer(id value, ABPropertyType type, NSString* key, fmx::Data& result) {
    if (key != nil && [value isKindOfClass:[NSDictionary class]]) {
        NSString* field = toKeyString(key);
        if (field == nil) {
            setError(kInvalidKey);
            return {};
        }
        return textAnswer([value objectForKey:field]);
    }
    if ((type | kABMultiValueMask) == kABMultiDateProperty) {
        return writeTimeStamp(value, result);
    }
    return textAnswer(value);
}

} // namespace koru

using namespace koru;

id GetPropertyValue(NSString* name, NSString* identifier, NSString* key, std::int32_t /*flags*/) {
    OpenProperty(name);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    if (identifier == nil && state.gValues) {
        setError(kUidMissing);
        return nil;
    }
    if (typeOfCurrentProperty(state.gCurrentProperty.get()) == kABDictionaryProperty && key == nil) {
        setError(kInvalidKey);
        return nil;
    }
    id value = nil;
    guardedCall([&] { findValue(identifier, key, value); });
    return value;
}
