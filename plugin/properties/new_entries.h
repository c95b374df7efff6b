#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// New entries of properties of the current person. Both functions make people the current record type and
// leave it so, and return the new entry's identifier, or nil when they fail the call: as OpenProperty does,
// and with kRecordReadOnly, kInvalidParameterValue, kInvalidPropertyType, kReplacingMultiValueFailed. The
// change stays in memory until it is saved.

// Adds a value with a label. The label is one of few words in any letter case (kAddedLabels), or any other
// text as it stands. Fails also with kNoActiveRecord (as the record type was before) and
// kAddingPropertyFailed: no label, no date, or a property that text cannot give, as an address.
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
// kInvalidCountryCode (missing, too) and kCreatingAddressFailed (no label); kInvalidParameterValue is an
// address with a country code alone.
[[nodiscard]] NSString* addAddress(NSString* label, const NewAddress& address);

} // namespace koru
