#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// One entry of a property of the current person, named by its identifier. These functions make people the
// current record type, whatever it was, and leave it so. A change is made in the copy that OpenProperty made
// and written back whole; it stays in memory until it is saved. All fail the call as OpenProperty does, with
// kUidMissing for no identifier (nil), and with kInvalidPropertyType for a property with a single value;
// those that change also with kRecordReadOnly and kReplacingMultiValueFailed.

// Opens the property. Returns false when it fails the call: as OpenProperty does, or with
// kInvalidPropertyType and the extended text for a property with a single value.
[[nodiscard]] bool openEntries(NSString* name, NSString* singleValueText = @"");

// Writes the open copy back to the current record. Returns false, with kReplacingMultiValueFailed, when the
// record refuses it.
[[nodiscard]] bool writeEntriesBack();

// Returns the entry's value, or with a key that field of an address (entryAnswer). Whether there is such an
// entry is not asked beforehand: the framework's range exception fails the call.
[[nodiscard]] Answer getEntryValue(NSString* name, NSString* identifier, NSString* key, fmx::Data& result);

// Changes the entry's value, with a key that field of an address; no text (nil) counts as an empty one. The
// keys are "Street", "City", "State", "Zip", "Country" and "CountryCode" in any letter case and nothing else,
// unlike when reading. Returns "0", or nil with kNoMultiValue, kUidDoesNotExist, kInvalidKey,
// kInvalidCountryCode, kInvalidPropertyType (a key for what is no address, an address without one),
// kEmptyValue (no date), kSettingPropertyFailed.
[[nodiscard]] NSString* setEntryValue(NSString* name, NSString* identifier, NSString* text, NSString* key);

// Removes the entry, with a key only that field of an address. Returns "0", or nil with kUidDoesNotExist,
// kInvalidKey, kDeleteFailed.
[[nodiscard]] NSString* deleteEntry(NSString* name, NSString* identifier, NSString* key);

// Returns the word for the entry's label, or the label itself when there is none; nil with kNoActiveRecord
// (as the record type was before), kUidDoesNotExist, kNoLabel.
[[nodiscard]] NSString* getEntryLabel(NSString* name, NSString* identifier);

// Changes the entry's label to what the word stands for, or to the word itself. Returns "0", or nil with
// kNoMultiValue, kUidDoesNotExist, kSettingLabelFailed.
[[nodiscard]] NSString* setEntryLabel(NSString* name, NSString* identifier, NSString* word);

} // namespace koru
