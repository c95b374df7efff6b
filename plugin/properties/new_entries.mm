#import "plugin/properties/new_entries.h"

#import "plugin/properties/entries.h"
#import "plugin/records/plugin_state.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#include "plugin/support/numbers.h"
#import "plugin/vocabulary/country_codes.h"
#import "plugin/vocabulary/labels.h"

namespace koru {
namespace {

// The words for labels of new entries. Fewer than StringToLabel has, on purpose: "mobile phone", for
// instance, here becomes a label of that very text.
const Label kAddedLabels[] = {
    {@"home", &kABHomeLabel},
    {@"work", &kABWorkLabel},
    {@"other", &kABOtherLabel},
    {@"home fax", &kABPhoneHomeFAXLabel},
    {@"work fax", &kABPhoneWorkFAXLabel},
    {@"main", &kABPhoneMainLabel},
    {@"mobile", &kABPhoneMobileLabel},
    {@"pager", &kABPhonePagerLabel},
    {@"home page", &kABHomePageLabel},
    {@"anniversary", &kABAnniversaryLabel},
    {@"mother", &kABMotherLabel},
    {@"father", &kABFatherLabel},
    {@"parent", &kABParentLabel},
    {@"sister", &kABSisterLabel},
    {@"brother", &kABBrotherLabel},
    {@"child", &kABChildLabel},
    {@"friend", &kABFriendLabel},
    {@"spouse", &kABSpouseLabel},
    {@"assistant", &kABAssistantLabel},
    {@"manager", &kABManagerLabel},
};

// Returns the label for the text; nil for nil, which no entry can have.
NSString* addedLabel(NSString* text) {
    if (text == nil) {
        return nil;
    }
    for (const Label& row : kAddedLabels) {
        if ([text caseInsensitiveCompare:row.word] == NSOrderedSame) {
            return row.stored();
        }
    }
    return text;
}

// Returns the text converted to the value of a new entry; nil when it names no date, and for types that have
// no text form.
id convertedNewEntry(NSString* text, ABPropertyType type) {
    switch (type | kABMultiValueMask) {
    case kABMultiStringProperty:
        return text;
    case kABMultiIntegerProperty:
        return [NSNumber numberWithInt:[text intValue]];
    case kABMultiRealProperty:
        // Single precision and no fraction, on purpose.
        return [NSNumber numberWithLongLong:truncated([text floatValue])];
    case kABMultiDateProperty:
        return [NSDate dateWithNaturalLanguageString:text];
    default:
        return nil;
    }
}

// Adds the value to the open property and writes that back. Returns the new entry's identifier; nil when it
// fails the call, with [refused] when the framework does not accept the value.
NSString* append(id value, NSString* label, ErrorCode refused) {
    if (!state.gValues) {
        state.gValues = Retained<ABMutableMultiValue>::adopt([[ABMutableMultiValue alloc] init]);
    }
    // Asked first, as the framework raises for a value or label that is nil.
    const bool isEntry = value != nil && label != nil;
    NSString* identifier = isEntry ? [state.gValues.get() addValue:value withLabel:label] : nil;
    if (identifier == nil) {
        setError(refused);
        return nil;
    }
    return writeEntriesBack() ? identifier : nil;
}

// Returns the fields that are there, under the framework's keys.
NSDictionary* dictionaryOf(const NewAddress& address) {
    const struct {
        NSString* key;
        NSString* value;
    } fields[] = {
        {kABAddressStreetKey, address.street},   {kABAddressCityKey, address.city},
        {kABAddressStateKey, address.state},     {kABAddressZIPKey, address.zip},
        {kABAddressCountryKey, address.country}, {kABAddressCountryCodeKey, address.countryCode},
    };
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
    for (const auto& field : fields) {
        if (field.value != nil) {
            [dictionary setObject:field.value forKey:field.key];
        }
    }
    return dictionary;
}

} // namespace

NSString* addEntry(NSString* name, NSString* text, NSString* label) {
    if (!requireActiveRecord()) {
        return nil;
    }
    state.g_currentRecordType = kPersonType;
    if (!requireWritableRecord()) {
        return nil;
    }
    if (text == nil) {
        setError(kInvalidParameterValue);
        return nil;
    }
    if (!openEntries(name)) {
        return nil;
    }
    id value = convertedNewEntry(text, typeOfCurrentProperty(state.gCurrentProperty.get()));
    return append(value, addedLabel(label), kAddingPropertyFailed);
}

NSString* addAddress(NSString* label, const NewAddress& address) {
    state.g_currentRecordType = kPersonType;
    if (!requireWritableRecord()) {
        return nil;
    }
    NewAddress stored = address;
    stored.countryCode = [address.countryCode lowercaseString];
    if (!IsValidCountryCode(stored.countryCode)) {
        setError(kInvalidCountryCode);
        return nil;
    }
    if (address.street == nil && address.city == nil && address.state == nil && address.zip == nil &&
        address.country == nil) {
        setError(kInvalidParameterValue);
        return nil;
    }
    if (!openEntries(@"Address")) {
        return nil;
    }
    return append(dictionaryOf(stored), labelToStore(label), kCreatingAddressFailed);
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_Add(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                         fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return addEntry(textArgument(arguments, 0), textArgument(arguments, 1), textArgument(arguments, 2));
    };
    return runHandler(function, arguments, result, work);
}

// The name under which the host knows Do_KORU_Add.
fmx::errcode Do_KORU_AddMV(short function, const fmx::ExprEnv& env, const fmx::DataVect& arguments,
                           fmx::Data& result) {
    Do_KORU_Add(function, env, arguments, result);
    return 0;
}

fmx::errcode Do_KORU_AddAddress(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                                fmx::Data& result) {
    const auto work = [&]() -> Answer {
        const NewAddress address{.street = textArgument(arguments, 1),
                                 .city = textArgument(arguments, 2),
                                 .state = textArgument(arguments, 3),
                                 .zip = textArgument(arguments, 4),
                                 .country = textArgument(arguments, 5),
                                 .countryCode = textArgument(arguments, 6)};
        return addAddress(textArgument(arguments, 0), address);
    };
    return runHandler(function, arguments, result, work);
}
