#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// Reading and changing one entry, named by its identifier, of a property of the current person that has
// several values. These functions make people the current record type. A change is made in the copy that
// OpenProperty made, which is then written back as a whole; it stays in memory until it is saved. All fail
// the call as OpenProperty does, with kUidMissing when the identifier is nil, and with kInvalidPropertyType
// for a property with a single value; those that change something also with kRecordReadOnly and
// kReplacingMultiValueFailed.

// Opens the property. Returns false when it fails the call: as OpenProperty does, or, for a property with a
// single value, with kInvalidPropertyType and [singleValueText] as the extended text.
[[nodiscard]] bool openEntries(NSString* name, NSString* singleValueText = @"");

// Writes the open copy back to the current record. Returns false, with kReplacingMultiValueFailed, when the
// record refuses it.
[[nodiscard]] bool writeEntriesBack();

// Returns the entry's value, or with a key that field of an address (entryAnswer). When there is no such
// entry, the framework's range exception fails the call.
[[nodiscard]] Answer getEntryValue(NSString* name, NSString* identifier, NSString* key, fmx::Data& result);

// Changes the entry's value, or with a key that field of an address; nil counts as empty text. The keys are
// exactly "Street", "City", "State", "Zip", "Country" and "CountryCode" in any letter case; reading accepts
// more. Returns "0", or nil with kNoMultiValue, kUidDoesNotExist, kInvalidKey, kInvalidCountryCode,
// kInvalidPropertyType (a key for a value that is no address, or an address without a key), kEmptyValue (the
// text names no date), kSettingPropertyFailed.
[[nodiscard]] NSString* setEntryValue(NSString* name, NSString* identifier, NSString* text, NSString* key);

// Removes the entry, with a key only that field of an address. Returns "0", or nil with kUidDoesNotExist,
// kInvalidKey, kDeleteFailed.
[[nodiscard]] NSString* deleteEntry(NSString* name, NSString* identifier, NSString* key);

// Returns the word for the entry's label, or the label itself when there is no word; nil with kNoActiveRecord
// (asked before people become the current type), kUidDoesNotExist, kNoLabel.
[[nodiscard]] NSString* getEntryLabel(NSString* name, NSString* identifier);

// Changes the entry's label to the one that the word stands for, or to the word itself when it stands for
// none. Returns "0", or nil with kNoMultiValue, kUidDoesNotExist, kSettingLabelFailed.
[[nodiscard]] NSString* setEntryLabel(NSString* name, NSString* identifier, NSString* word);

} // namespace koru
