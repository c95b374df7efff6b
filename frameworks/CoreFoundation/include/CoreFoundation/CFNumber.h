#pragma once

#include <CoreFoundation/CFBase.h>

// The C type that a number is made of or written to.
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

// NULL for an unknown type.
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

// Answers whether the value is the same in the type that is asked for; writes it, cut to size, in any case.
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);
