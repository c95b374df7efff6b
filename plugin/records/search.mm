#import "plugin/records/search.h"

#import "plugin/records/plugin_state.h"
#import "plugin/records/shared_book.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#include "plugin/support/numbers.h"
#import "plugin/vocabulary/address_keys.h"
#import "plugin/vocabulary/labels.h"
#import "plugin/vocabulary/property_names.h"

namespace koru {
namespace {

const Comparison kComparisons[] = {
    {@"Equal", kABEqual},
    {@"NotEqual", kABNotEqual},
    {@"LessThan", kABLessThan},
    {@"LessThanOrEqual", kABLessThanOrEqual},
    {@"GreaterThan", kABGreaterThan},
    {@"GreaterThanOrEqual", kABGreaterThanOrEqual},
    {@"EqualCaseInsensitive", kABEqualCaseInsensitive},
    {@"ContainsSubString", kABContainsSubString},
    {@"ContainsSubStringCaseInsensitive", kABContainsSubStringCaseInsensitive},
    {@"PrefixMatch", kABPrefixMatch},
    {@"PrefixMatchCaseInsensitive", kABPrefixMatchCaseInsensitive},
    {@"BitsInBitFieldMatch", kABBitsInBitFieldMatch},
    {@"DoesNotContainSubString", kABDoesNotContainSubString},
    {@"DoesNotContainSubStringCaseInsensitive", kABDoesNotContainSubStringCaseInsensitive},
    {@"NotEqualCaseInsensitive", kABNotEqualCaseInsensitive},
    {@"SuffixMatch", kABSuffixMatch},
    {@"SuffixMatchCaseInsensitive", kABSuffixMatchCaseInsensitive},
    {@"WithinIntervalAroundToday", kABWithinIntervalAroundToday, true},
    {@"WithinIntervalAroundTodayYearless", kABWithinIntervalAroundTodayYearless, true},
    {@"NotWithinIntervalAroundToday", kABNotWithinIntervalAroundToday, true},
    {@"NotWithinIntervalAroundTodayYearless", kABNotWithinIntervalAroundTodayYearless, true},
    {@"WithinIntervalFromToday", kABWithinIntervalFromToday, true},
    {@"WithinIntervalFromTodayYearless", kABWithinIntervalFromTodayYearless, true},
    {@"NotWithinIntervalFromToday", kABNotWithinIntervalFromToday, true},
    {@"NotWithinIntervalFromTodayYearless", kABNotWithinIntervalFromTodayYearless, true},
};

// How the new condition is joined with the one that is kept.
enum class Join { kReplace, kOr, kAnd };

// Reads the conjunction. Returns false when it fails the call.
bool readConjunction(NSString* word, Join& join) {
    if (word == nil) {
        join = Join::kReplace;
        return true;
    }
    if (!state.g_searchelement) {
        setError(kInvalidCallOrder);
        return false;
    }
    NSString* lower = [word lowercaseString];
    if ([lower isEqualToString:@"expand"]) {
        join = Join::kOr;
    } else if ([lower isEqualToString:@"constrain"]) {
        join = Join::kAnd;
    } else {
        setError(kInvalidParameterValue);
        return false;
    }
    return true;
}

// Returns the text converted to the type that comparison and property take; nil when it names no date.
id convertedValue(NSString* text, NSString* property, const Comparison& comparison) {
    if (text == nil) {
        return nil;
    }
    if (comparison.isInterval) {
        return [NSNumber numberWithInteger:[text integerValue]];
    }
    const ABPropertyType type = state.g_lastSearchType == kGroupType ? [ABGroup typeOfProperty:property]
                                                                     : [ABPerson typeOfProperty:property];
    switch (type) {
    case kABIntegerProperty:
    case kABMultiIntegerProperty:
        return [NSNumber numberWithInteger:[text integerValue]];
    case kABRealProperty:
    case kABMultiRealProperty:
        // Without the fraction, on purpose: 3.9 searches for 3.
        return [NSNumber numberWithLongLong:truncated([text doubleValue])];
    case kABDateProperty:
    case kABMultiDateProperty:
        return [NSDate dateWithNaturalLanguageString:text];
    default:
        return [[text copy] autorelease];
    }
}

// Returns the condition on the records that the type word names: every word but "person" and "contact" means
// groups, which have neither labels nor keys.
ABSearchElement* newCondition(NSString* type, NSString* property, NSString* label, NSString* key, id value,
                              const Comparison& comparison) {
    NSString* word = [type lowercaseString];
    if ([word isEqualToString:@"contact"] || [word isEqualToString:@"person"]) {
        return [ABPerson searchElementForProperty:property
                                            label:label
                                              key:key
                                            value:value
                                       comparison:comparison.value];
    }
    return [ABGroup searchElementForProperty:property
                                       label:nil
                                         key:nil
                                       value:value
                                  comparison:comparison.value];
}

void keepCondition(ABSearchElement* condition, Join join) {
    ABSearchElement* whole = condition;
    if (join != Join::kReplace) {
        NSArray* children = [NSArray arrayWithObjects:condition, state.g_searchelement.get(), nil];
        whole = [ABSearchElement searchElementForConjunction:join == Join::kOr ? kABSearchOr : kABSearchAnd
                                                    children:children];
    }
    state.g_searchelement = Retained<ABSearchElement>::retain(whole);
}

} // namespace

std::span<const Comparison> comparisons() {
    return kComparisons;
}

const Comparison& comparisonNamed(NSString* name) {
    for (const Comparison& comparison : kComparisons) {
        if ([name isEqualToString:comparison.name]) {
            return comparison;
        }
    }
    return kComparisons[0];
}

NSString* search(const SearchArguments& arguments) {
    if (arguments.type == nil) {
        setError(kInvalidParameterValue);
        return nil;
    }
    // On purpose: any word but "group" makes the results those of persons, even one that searches groups.
    state.g_lastSearchType =
        [[arguments.type lowercaseString] isEqualToString:@"group"] ? kGroupType : kPersonType;
    manageSearch(arguments);
    if (errors.g_llasterror != kSuccess) {
        return nil;
    }
    NSArray* found = [sharedBook() recordsMatchingSearchElement:state.g_searchelement.get()];
    NSString* count = [NSString stringWithFormat:@"%u", static_cast<unsigned>([found count])];
    auto& results =
        state.g_lastSearchType == kGroupType ? state.g_groupSearchResults : state.g_personSearchResults;
    results = Retained<NSArray>::retain(found);
    state.g_currentRecordType = state.g_lastSearchType;
    return count;
}

} // namespace koru

using namespace koru;

int manageSearch(const SearchArguments& arguments) {
    guardedCall([&] {
        errors.g_llasterror = kSuccess;
        Join join = Join::kReplace;
        if (!readConjunction(arguments.conjunction, join)) {
            return;
        }
        NSString* label = StringToLabel(arguments.label);
        if (label == nil) {
            label = arguments.label;
        }
        NSString* property = arguments.property != nil ? toPropertyString(arguments.property) : nil;
        if (property == nil) {
            property = arguments.property;
        }
        NSString* key = toKeyString(arguments.key);
        const Comparison& comparison = comparisonNamed(arguments.comparison);
        id value = convertedValue(arguments.value, property, comparison);
        keepCondition(newCondition(arguments.type, property, label, key, value, comparison), join);
    });
    return 0;
}

fmx::errcode Do_KORU_Search(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                            fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return search({
            textArgument(arguments, 0),
            textArgument(arguments, 1),
            textArgument(arguments, 2),
            textArgument(arguments, 3),
            textArgument(arguments, 4),
            textArgument(arguments, 5),
            textArgument(arguments, 6),
        });
    };
    return runHandler(function, arguments, result, work);
}
