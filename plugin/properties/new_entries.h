#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Adding entries to properties of the current person. Both functions make people the current record type, and
// return the new entry's identifier, or nil when they fail the call: as OpenProperty does, and with
// kRecordReadOnly, kInvalidParameterValue, kInvalidPropertyType, kReplacingMultiValueFailed. The change stays
// in memory until it is saved.

// Adds a value with a label. The label is one of a few words in any letter case (kAddedLabels), or any other
// text as it stands. Fails also with kNoActiveRecord (asked before people become the current type) and with
// kAddingPropertyFailed: the label is nil, the text names no date, or the property's type has no text form,
// as an address.
[[nodiscard]] NSString* addEntry(NSString* name, NSString* text, NSString* label);

// The fields of a new address; nil for those that it does not have.
struct NewAddress {
    NSString* street;
    NSString* city;
    NSString* state;
    NSString* zip;
    NSString* country;
    NSString* countryCode; // in any letter case
};

// Adds an address with a label: a word (StringToLabel), or any other text as it stands. Fails also with
// kInvalidCountryCode (unknown or nil), kCreatingAddressFailed (the label is nil), and kInvalidParameterValue
// (no field but the country code).
[[nodiscard]] NSString* addAddress(NSString* label, const NewAddress& address);

} // namespace koru
