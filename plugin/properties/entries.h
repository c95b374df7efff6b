#pragma once

#import "plugin/shell/handler_frame.h"

// One entry of a property of the current person, named by its identifier. These functions make people the
// current record type, whatever it was, and leave it so. A change is made in the copy that OpenProperty made
// and written back whole; it stays in memory until it is saved. All fail the call as OpenProperty does, with
// kUidMissing for no identifier (nil), and with kInvalidPropertyType for a property with a single value;
// those that change also with kRecordReadOnly and kReplacingMultiValueFailed.

// Opens the property, and fails the call with kInvalidPropertyType and the extended text when it has a single
// value. False when the call has failed.
[[nodiscard]] bool openEntries(NSString* name, NSString* singleValueText = @"");

// Writes the open copy back to the current record. False with kReplacingMultiValueFailed when it is refused.
[[nodiscard]] bool writeEntriesBack();

// The entry's value, or that field of an address (entryAnswer). An identifier that is not there is not
// looked for beforehand: the framework's range exception fails the call.
[[nodiscard]] Answer getEntryValue(NSString* name, NSString* identifier, NSString* key, fmx::Data& result);

// Changes the entry's value, with a key that field of an address; no text (nil) counts as an empty one. The
// keys are "Street", "City", "State", "Zip", "Country" and "CountryCode" in any letter case and nothing else,
// unlike when reading. "0", or nil with kNoMultiValue, kUidDoesNotExist, kInvalidKey, kInvalidCountryCode,
// kInvalidPropertyType (a key for what is no address, an address without one), kEmptyValue (no date),
// kSettingPropertyFailed.
[[nodiscard]] NSString* setEntryValue(NSString* name, NSString* identifier, NSString* text, NSString* key);

// Removes the entry, with a key only that field of an address. "0", or nil with kUidDoesNotExist,
// kInvalidKey, kDeleteFailed.
[[nodiscard]] NSString* deleteEntry(NSString* name, NSString* identifier, NSString* key);

// The word for the entry's label, or the label itself when there is none. nil with kNoActiveRecord (as the
// record type was before), kUidDoesNotExist, kNoLabel.
[[nodiscard]] NSString* getEntryLabel(NSString* name, NSString* identifier);

// Changes the entry's label to what the word stands for, or to the word itself. "0", or nil with
// kNoMultiValue, kUidDoesNotExist, kSettingLabelFailed.
[[nodiscard]] NSString* setEntryLabel(NSString* name, NSString* identifier, NSString* word);
