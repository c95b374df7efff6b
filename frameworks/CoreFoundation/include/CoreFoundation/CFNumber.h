#pragma once

#include <CoreFoundation/CFBase.h>

// The C type from which a number is made, or to which it is written.
typedef CFIndex CFNumberType;
enum {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15,
    kCFNumberCGFloatType = 16
};

CF_EXPORT CFTypeID CFNumberGetTypeID(void);

// Makes a number of the value that [value] points to; NULL for an unknown type.
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

// Writes the number's value in the given type, truncated if necessary; returns whether it is unchanged.
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);
