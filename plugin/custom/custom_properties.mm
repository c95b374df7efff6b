#import "plugin/custom/custom_properties.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

bool isPersonKind(NSString* kind) {
    return [kind caseInsensitiveCompare:@"person"] == NSOrderedSame;
}

// Returns the current record of the kind; nil when there is none.
ABRecord* recordOfKind(NSString* kind) {
    return isPersonKind(kind) ? static_cast<ABRecord*>(state.g_person.get())
                              : static_cast<ABRecord*>(state.g_group.get());
}

// Fails the call, and returns false, when an argument is missing.
bool require(NSString* argument) {
    if (argument == nil) {
        setErrorCodeOnly(kInvalidParameterValue);
        return false;
    }
    return true;
}

// Returns "0" when the framework changed a property. Otherwise fails the call, with [none] when [changed] is
// 0 and [failed] when it is -1, and returns nil.
NSString* answerOfCount(NSInteger changed, ErrorCode none, ErrorCode failed) {
    if (changed == 0 || changed == -1) {
        setError(changed == 0 ? none : failed);
        return nil;
    }
    return @"0";
}

} // namespace

NSString* addCustomProperty(NSString* kind, NSString* name) {
    if (!require(kind) || !require(name)) {
        return nil;
    }
    NSDictionary* types = [NSDictionary dictionaryWithObject:[NSNumber numberWithInteger:kABStringProperty]
                                                      forKey:name];
    const NSInteger added =
        isPersonKind(kind) ? [ABPerson addPropertiesAndTypes:types] : [ABGroup addPropertiesAndTypes:types];
    return answerOfCount(added, kNoPropertiesAdded, kCreatingPropertyFailed);
}

NSString* removeCustomProperty(NSString* kind, NSString* name) {
    if (!require(kind) || !require(name)) {
        return nil;
    }
    NSArray* names = [NSArray arrayWithObject:name];
    const NSInteger removed =
        isPersonKind(kind) ? [ABPerson removeProperties:names] : [ABGroup removeProperties:names];
    return answerOfCount(removed, kNoPropertiesRemoved, kRemovingPropertyFailed);
}

NSString* setCustomValue(NSString* kind, NSString* name, NSString* text) {
    if (!require(kind)) {
        return nil;
    }
    if (text == nil) {
        [recordOfKind(kind) removeValueForProperty:name];
    } else if (![recordOfKind(kind) setValue:text forProperty:name]) {
        setError(kSettingCustomPropertyFailed);
        return nil;
    }
    return @"0";
}

NSString* getCustomValue(NSString* kind, NSString* name) {
    if (!require(kind)) {
        return nil;
    }
    id value = [recordOfKind(kind) valueForProperty:name];
    return value != nil ? value : @"empty";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_AddCustomField(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return addCustomProperty(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_RemoveCustomField(short function, const fmx::ExprEnv& /*env*/,
                                       const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return removeCustomProperty(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_SetCustomField(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return setCustomValue(textArgument(arguments, 0), textArgument(arguments, 1),
                              textArgument(arguments, 2));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_GetCustomField(short function, const fmx::ExprEnv& /*env*/,
                                    const fmx::DataVect& arguments, fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return getCustomValue(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}
