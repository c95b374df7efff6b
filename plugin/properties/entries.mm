#import "plugin/properties/entries.h"

#import "plugin/records/plugin_state.h"
#include "plugin/shell/handlers.h"
#import "plugin/vocabulary/address_keys.h"
#import "plugin/vocabulary/country_codes.h"
#import "plugin/vocabulary/labels.h"
#import "plugin/vocabulary/property_names.h"
#import "plugin/vocabulary/value_format.h"

namespace koru {
namespace {

// The fields of an address as they are named for writing.
struct WrittenField {
    NSString* word;
    NSString* const* key;
};

const WrittenField kWrittenFields[] = {
    {@"Street", &kABAddressStreetKey},   {@"City", &kABAddressCityKey},
    {@"State", &kABAddressStateKey},     {@"Zip", &kABAddressZIPKey},
    {@"Country", &kABAddressCountryKey}, {@"CountryCode", &kABAddressCountryCodeKey},
};

NSString* writtenField(NSString* word) {
    for (const WrittenField& row : kWrittenFields) {
        if ([word caseInsensitiveCompare:row.word] == NSOrderedSame) {
            return *row.key;
        }
    }
    return nil;
}

// Opens the property for an entry with the identifier. Returns false when it fails the call.
bool openForEntry(NSString* name, NSString* identifier) {
    if (identifier == nil) {
        setError(kUidMissing);
        return false;
    }
    return openEntries(name);
}

// Returns the index of the entry in the open copy; 0 when there is no copy. Fails the call with
// kUidDoesNotExist when there is no such entry.
NSUInteger indexOfEntry(NSString* identifier) {
    const NSUInteger index = [state.gValues.get() indexForIdentifier:identifier];
    if (index == static_cast<NSUInteger>(NSNotFound)) {
        setError(kUidDoesNotExist);
    }
    return index;
}

// Opens the property and finds the entry that is to be changed. Returns false when it fails the call, with
// kNoMultiValue when there is no value at all.
bool openToChange(NSString* name, NSString* identifier, NSUInteger& index) {
    if (!openForEntry(name, identifier)) {
        return false;
    }
    if (!state.gValues) {
        setError(kNoMultiValue);
        return false;
    }
    index = indexOfEntry(identifier);
    return errors.g_llasterror == kSuccess;
}

// Returns the address with one field changed; nil when it fails the call.
NSDictionary* addressWithField(id address, NSString* word, NSString* text) {
    if (![address isKindOfClass:[NSDictionary class]]) {
        setError(kInvalidPropertyType);
        return nil;
    }
    NSString* key = writtenField(word);
    if (key == nil) {
        setError(kInvalidKey);
        return nil;
    }
    if ([key isEqualToString:kABAddressCountryCodeKey]) {
        text = [text lowercaseString];
        if (!IsValidCountryCode(text)) {
            setError(kInvalidCountryCode);
            return nil;
        }
    }
    NSMutableDictionary* changed = [[address mutableCopy] autorelease];
    [changed setObject:text forKey:key];
    return changed;
}

// Returns the text converted to the value of an entry. nil when it names no date, and, failing the call, for
// types that have no text form.
id convertedEntry(NSString* text, ABPropertyType type) {
    switch (type) {
    case kABMultiStringProperty:
        return text;
    case kABMultiIntegerProperty:
        return [NSNumber numberWithInt:[text intValue]];
    case kABMultiRealProperty:
        // Keeps the fraction, which single values and new entries lose. On purpose.
        return [NSNumber numberWithFloat:[text floatValue]];
    case kABMultiDateProperty:
        return [NSDate dateWithNaturalLanguageString:text];
    default:
        setError(kInvalidPropertyType);
        return nil;
    }
}

} // namespace

bool openEntries(NSString* name, NSString* singleValueText) {
    OpenProperty(name);
    if (errors.g_llasterror != kSuccess) {
        return false;
    }
    if ((typeOfCurrentProperty(state.gCurrentProperty.get()) & kABMultiValueMask) == 0) {
        setError(kInvalidPropertyType, singleValueText);
        return false;
    }
    return true;
}

bool writeEntriesBack() {
    if (![currentRecord() setValue:state.gValues.get() forProperty:state.gCurrentProperty.get()]) {
        setError(kReplacingMultiValueFailed);
        return false;
    }
    return true;
}

Answer getEntryValue(NSString* name, NSString* identifier, NSString* key, fmx::Data& result) {
    state.g_currentRecordType = kPersonType;
    if (!openForEntry(name, identifier) || !state.gValues) {
        return {};
    }
    ABMultiValue* values = state.gValues.get();
    id value = [values valueAtIndex:[values indexForIdentifier:identifier]];
    return entryAnswer(value, typeOfCurrentProperty(state.gCurrentProperty.get()), key, result);
}

NSString* setEntryValue(NSString* name, NSString* identifier, NSString* text, NSString* key) {
    state.g_currentRecordType = kPersonType;
    NSUInteger index = 0;
    if (!requireWritableRecord() || !openToChange(name, identifier, index)) {
        return nil;
    }
    if (text == nil) {
        text = @"";
    }
    id value = key != nil ? addressWithField([state.gValues.get() valueAtIndex:index], key, text)
                          : convertedEntry(text, typeOfCurrentProperty(state.gCurrentProperty.get()));
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    if (value == nil) {
        // The copy is still written back.
        setError(kEmptyValue);
    } else if (![state.gValues.get() replaceValueAtIndex:index withValue:value]) {
        setError(kSettingPropertyFailed);
        return nil;
    }
    return writeEntriesBack() ? @"0" : nil;
}

NSString* deleteEntry(NSString* name, NSString* identifier, NSString* key) {
    state.g_currentRecordType = kPersonType;
    if (!requireWritableRecord() || !openForEntry(name, identifier)) {
        return nil;
    }
    // Without a copy there is no entry to look for, and removing it is refused.
    ABMutableMultiValue* values = state.gValues.get();
    const NSUInteger index = indexOfEntry(identifier);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    id value = [values valueAtIndex:index];
    if (key != nil && [value isKindOfClass:[NSDictionary class]]) {
        NSString* field = toKeyString(key);
        if (field == nil) {
            setError(kInvalidKey);
            return nil;
        }
        NSMutableDictionary* address = [[value mutableCopy] autorelease];
        [address removeObjectForKey:field];
        [values replaceValueAtIndex:index withValue:address];
    } else if (![values removeValueAndLabelAtIndex:index]) {
        setError(kDeleteFailed);
        return nil;
    }
    return writeEntriesBack() ? @"0" : nil;
}

NSString* getEntryLabel(NSString* name, NSString* identifier) {
    // On purpose: the only one of the five functions that requires a record, and before it makes people
    // current.
    if (!requireActiveRecord()) {
        return nil;
    }
    state.g_currentRecordType = kPersonType;
    if (!openForEntry(name, identifier)) {
        return nil;
    }
    if (!state.gValues) {
        setError(kUidDoesNotExist);
        return nil;
    }
    const NSUInteger index = indexOfEntry(identifier);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    NSString* label = [state.gValues.get() labelAtIndex:index];
    if (label == nil) {
        setError(kNoLabel);
        return nil;
    }
    NSString* word = LabelToString(label);
    return word != nil ? word : label;
}

NSString* setEntryLabel(NSString* name, NSString* identifier, NSString* word) {
    state.g_currentRecordType = kPersonType;
    NSUInteger index = 0;
    if (!requireWritableRecord() || !openToChange(name, identifier, index)) {
        return nil;
    }
    NSString* label = labelToStore(word);
    // Asked first, as the framework raises for a label that is nil.
    if (label == nil || ![state.gValues.get() replaceLabelAtIndex:index withLabel:label]) {
        setError(kSettingLabelFailed);
        return nil;
    }
    return writeEntriesBack() ? @"0" : nil;
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetValueForUID(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return getEntryValue(textArgument(arguments, 0), textArgument(arguments, 1),
                             textArgument(arguments, 2), result);
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_SetValueForUID(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return setEntryValue(textArgument(arguments, 0), textArgument(arguments, 1),
                             textArgument(arguments, 2), textArgument(arguments, 3));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_DeleteValueForUID(short function, const fmx::ExprEnv& /*env*/,
                                       const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return deleteEntry(textArgument(arguments, 0), textArgument(arguments, 1),
                           textArgument(arguments, 2));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_GetLabelForUID(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return getEntryLabel(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_SetLabelForUID(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return setEntryLabel(textArgument(arguments, 0), textArgument(arguments, 1),
                             textArgument(arguments, 2));
    };
    return runHandler(function, arguments, result, work);
}
