#pragma once

#import <Foundation/Foundation.h>

// A property's type; a property that holds a list of entries has the type of its entries and the multi-value
// bit.
#define kABMultiValueMask 0x100

enum {
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
typedef NSInteger ABPropertyType;

// How a search compares a property with a value. The interval comparisons take a number of seconds;
// "Yearless" ignores the year, as for birthdays.
enum {
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
typedef NSInteger ABSearchComparison;

// How a search joins its children.
enum { kABSearchAnd = 0, kABSearchOr = 1 };
typedef NSInteger ABSearchConjunction;
