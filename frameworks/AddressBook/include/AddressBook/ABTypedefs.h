#pragma once

// Types for Objective-C and C. Both see the same constants, as objects of Foundation or of Core Foundation.
#ifdef __OBJC__
#import <Foundation/Foundation.h>
typedef NSInteger ABPropertyType;
typedef NSInteger ABSearchComparison;
typedef NSInteger ABSearchConjunction;
#define AB_STRING NSString*
#else
#include <CoreFoundation/CoreFoundation.h>
typedef CFIndex ABPropertyType;
typedef CFIndex ABSearchComparison;
typedef CFIndex ABSearchConjunction;
#define AB_STRING CFStringRef
#endif

#ifdef __cplusplus
#define AB_EXTERN extern "C"
#else
#define AB_EXTERN extern
#endif

// The types of properties. A property with several values has the type of its entries with the multi-value
// bit.
#define kABMultiValueMask 0x100

enum _ABPropertyType {
    kABErrorInProperty = 0,
    kABStringProperty = 1,
    kABIntegerProperty = 2,
    kABRealProperty = 3,
    kABDateProperty = 4,
    kABArrayProperty = 5,
    kABDictionaryProperty = 6,
    kABDataProperty = 7,
    kABDateComponentsProperty = 8,
    kABMultiStringProperty = kABMultiValueMask | kABStringProperty,
    kABMultiIntegerProperty = kABMultiValueMask | kABIntegerProperty,
    kABMultiRealProperty = kABMultiValueMask | kABRealProperty,
    kABMultiDateProperty = kABMultiValueMask | kABDateProperty,
    kABMultiArrayProperty = kABMultiValueMask | kABArrayProperty,
    kABMultiDictionaryProperty = kABMultiValueMask | kABDictionaryProperty,
    kABMultiDataProperty = kABMultiValueMask | kABDataProperty,
    kABMultiDateComponentsProperty = kABMultiValueMask | kABDateComponentsProperty
};

// The comparisons of a property with a value in a search. The interval comparisons take a number of seconds;
// "Yearless" ignores the year, as for birthdays.
enum _ABSearchComparison {
    kABEqual = 0,
    kABNotEqual,
    kABLessThan,
    kABLessThanOrEqual,
    kABGreaterThan,
    kABGreaterThanOrEqual,
    kABEqualCaseInsensitive,
    kABContainsSubString,
    kABContainsSubStringCaseInsensitive,
    kABPrefixMatch,
    kABPrefixMatchCaseInsensitive,
    kABBitsInBitFieldMatch,
    kABDoesNotContainSubString,
    kABDoesNotContainSubStringCaseInsensitive,
    kABNotEqualCaseInsensitive,
    kABSuffixMatch,
    kABSuffixMatchCaseInsensitive,
    kABWithinIntervalAroundToday,
    kABWithinIntervalAroundTodayYearless,
    kABNotWithinIntervalAroundToday,
    kABNotWithinIntervalAroundTodayYearless,
    kABWithinIntervalFromToday,
    kABWithinIntervalFromTodayYearless,
    kABNotWithinIntervalFromToday,
    kABNotWithinIntervalFromTodayYearless
};

// How a search joins its children.
enum _ABSearchConjunction { kABSearchAnd = 0, kABSearchOr = 1 };
