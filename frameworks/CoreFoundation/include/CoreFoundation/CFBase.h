#pragma once

// What every object of Core Foundation has in common. These are the parts of Core Foundation that programs in
// C need for the address book. Every object is one of Foundation's, and casting a pointer is all it takes to
// go from one to the other: a CFStringRef is an NSString*, an ABPersonRef an ABPerson*.
//
// Functions with Create or Copy in their name answer an object that the caller releases; those with Get do
// not, and what they answer lives as long as the object that it was got from.

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXPORT extern "C"
#else
#define CF_EXPORT extern
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef uint16_t UniChar;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef unsigned long CFOptionFlags;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

typedef CFIndex CFComparisonResult;
enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
enum { kCFNotFound = -1 };

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFData* CFMutableDataRef;
typedef const struct __CFDate* CFDateRef;
typedef const struct __CFNumber* CFNumberRef;
typedef struct __CFError* CFErrorRef;

// There is one allocator: functions that take one ignore it.
#define kCFAllocatorDefault ((CFAllocatorRef)NULL)

// Adds an owner to an object, and takes one away; the object goes with its last one. NULL is not allowed.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);

CF_EXPORT Boolean CFEqual(CFTypeRef one, CFTypeRef other);
CF_EXPORT CFHashCode CFHash(CFTypeRef object);

// What kind of object it is: one of the numbers that CFStringGetTypeID() and so on answer. 0 for those that
// have no such function.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

// A text for people who look for errors; CFShow writes it to standard error.
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);
CF_EXPORT void CFShow(CFTypeRef object);
