// Data, dates and numbers.

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length) {
    (void)allocator;
    return (CFDataRef)[[NSData alloc] initWithBytes:bytes length:(NSUInteger)length];
}

CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data) {
    (void)allocator;
    return (CFDataRef)[(NSData*)data copy];
}

CFIndex CFDataGetLength(CFDataRef data) {
    return (CFIndex)[(NSData*)data length];
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return [(NSData*)data bytes];
}

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer) {
    [(NSData*)data getBytes:buffer range:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
}

const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200;

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) {
    return [NSDate timeIntervalSinceReferenceDate];
}

CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime moment) {
    (void)allocator;
    return (CFDateRef)[[NSDate alloc] initWithTimeIntervalSinceReferenceDate:moment];
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) {
    return [(NSDate*)date timeIntervalSinceReferenceDate];
}

CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef date, CFDateRef earlier) {
    return CFDateGetAbsoluteTime(date) - CFDateGetAbsoluteTime(earlier);
}

CFComparisonResult CFDateCompare(CFDateRef one, CFDateRef other, void* context) {
    (void)context;
    return [(NSDate*)one compare:(NSDate*)other];
}

// Expands CASE for the C type that corresponds to each CFNumberType.
#define FOR_TYPE(type, CASE)                                                                                 \
    switch (type) {                                                                                          \
    case kCFNumberSInt8Type:                                                                                 \
    case kCFNumberCharType:                                                                                  \
        CASE(int8_t, Char, charValue)                                                                        \
    case kCFNumberSInt16Type:                                                                                \
    case kCFNumberShortType:                                                                                 \
        CASE(int16_t, Short, shortValue)                                                                     \
    case kCFNumberSInt32Type:                                                                                \
    case kCFNumberIntType:                                                                                   \
        CASE(int32_t, Int, intValue)                                                                         \
    case kCFNumberSInt64Type:                                                                                \
    case kCFNumberLongType:                                                                                  \
    case kCFNumberLongLongType:                                                                              \
    case kCFNumberCFIndexType:                                                                               \
    case kCFNumberNSIntegerType:                                                                             \
        CASE(int64_t, LongLong, longLongValue)                                                               \
    case kCFNumberFloat32Type:                                                                               \
    case kCFNumberFloatType:                                                                                 \
        CASE(float, Float, floatValue)                                                                       \
    case kCFNumberFloat64Type:                                                                               \
    case kCFNumberDoubleType:                                                                                \
    case kCFNumberCGFloatType:                                                                               \
        CASE(double, Double, doubleValue)                                                                    \
    default:                                                                                                 \
        break;                                                                                               \
    }

CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value) {
    (void)allocator;
#define MAKE(ctype, name, getter) return OWNED([NSNumber numberWith##name:*(const ctype*)value]);
    FOR_TYPE(type, MAKE)
#undef MAKE
    return NULL;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
#define WRITE(ctype, name, getter)                                                                           \
    {                                                                                                        \
        *(ctype*)value = [(NSNumber*)number getter];                                                         \
        CFNumberRef written = CFNumberCreate(NULL, type, value);                                             \
        const Boolean same = CFEqual(written, number);                                                       \
        CFRelease(written);                                                                                  \
        return same;                                                                                         \
    }
    FOR_TYPE(type, WRITE)
#undef WRITE
    return false;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    const char type = *[(NSNumber*)number objCType];
    return type == 'f' || type == 'd';
}
