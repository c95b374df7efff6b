#import "plugin/properties/single_value.h"

#import "plugin/records/plugin_state.h"
#import "plugin/records/record_type.h"
#include "plugin/shell/handlers.h"
#include "plugin/support/numbers.h"
#import "plugin/vocabulary/property_names.h"
#import "plugin/vocabulary/value_format.h"

namespace koru {
namespace {

// The words for the person flags. Each stands for the whole number, so that setting one replaces all flags.
struct FlagWord {
    NSString* word;
    int flags;
};

const FlagWord kFlagWords[] = {
    {@"ShowAsCompany", kABShowAsCompany},
    {@"ShowAsPerson", kABShowAsPerson},
    {@"FirstNameFirst", kABFirstNameFirst},
    {@"LastNameFirst", kABLastNameFirst},
};

// Returns the flags for a word; 0 for any other text, also for digits, on purpose.
NSNumber* flagsFromText(NSString* text) {
    for (const FlagWord& row : kFlagWords) {
        if ([text isEqualToString:row.word]) {
            return [NSNumber numberWithInt:row.flags];
        }
    }
    return [NSNumber numberWithInt:0];
}

// Opens the property and returns its type; 0 when it fails the call. [severalValuesText] is the extended text
// of the error for a property with several values.
ABPropertyType openSingleValue(NSString* name, NSString* severalValuesText) {
    OpenProperty(name);
    if (errors.g_llasterror != kSuccess) {
        return kABErrorInProperty;
    }
    const ABPropertyType type = typeOfCurrentProperty(state.gCurrentProperty.get());
    if ((type & kABMultiValueMask) != 0) {
        setError(kInvalidPropertyType, severalValuesText);
        return kABErrorInProperty;
    }
    return type;
}

// Returns the text converted to a value of the type; nil when it names no date, and, failing the call, for
// types that cannot be set.
id convertedValue(NSString* text, ABPropertyType type) {
    switch (type) {
    case kABStringProperty:
        return [[text copy] autorelease];
    case kABIntegerProperty:
        return flagsFromText(text);
    case kABRealProperty:
        // Single precision and no fraction, on purpose.
        return [NSNumber numberWithLongLong:truncated([text floatValue])];
    case kABDateProperty:
        return [NSDate dateWithNaturalLanguageString:text];
    default:
        setError(kInvalidPropertyType);
        return nil;
    }
}

} // namespace

Answer getValueForProperty(NSString* name, fmx::Data& result) {
    if (!requireActiveRecord()) {
        return {};
    }
    const ABPropertyType type = openSingleValue(name, @"This property may be a multi-value property.");
    if (errors.g_llasterror != kSuccess) {
        return {};
    }
    id value = [currentRecord() valueForProperty:state.gCurrentProperty.get()];
    const Answer answer = singleValueAnswer(value, type, name, result);
    state.gCurrentProperty.reset();
    return answer;
}

NSString* setValueForProperty(NSString* name, NSString* text) {
    if (!requireActiveRecord() || !requireWritableRecord()) {
        return nil;
    }
    const ABPropertyType type = openSingleValue(name, @"");
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    NSString* property = state.gCurrentProperty.get();
    if (text == nil) {
        [currentRecord() removeValueForProperty:property];
        return @"0";
    }
    id value = convertedValue(text, type);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    if (value != nil && ![currentRecord() setValue:value forProperty:property]) {
        setError(kSettingPropertyFailed);
        return nil;
    }
    return @"0";
}

NSString* deleteValueForProperty(NSString* name) {
    if (!requireActiveRecord() || !requireWritableRecord()) {
        return nil;
    }
    openSingleValue(name, @"");
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    [currentRecord() removeValueForProperty:state.gCurrentProperty.get()];
    state.gCurrentProperty.reset();
    return @"0";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_GetValueForProperty(short function, const fmx::ExprEnv& /*env*/,
                                         const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 1);
        return getValueForProperty(textArgument(arguments, 0), result);
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_SetValueForProperty(short function, const fmx::ExprEnv& /*env*/,
                                         const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 2);
        return setValueForProperty(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_DeleteValueForProperty(short function, const fmx::ExprEnv& /*env*/,
                                            const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        SetType(arguments, 1);
        return deleteValueForProperty(textArgument(arguments, 0));
    };
    return runHandler(function, arguments, result, work);
}
