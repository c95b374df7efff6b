#pragma once

// The basics of Core Foundation, of which the parts are here that C programs need for the address book. Every
// object is one of Foundation's, and a pointer can simply be cast: a CFStringRef is an NSString*, an
// ABPersonRef an ABPerson*.
//
// Functions with Create or Copy in their name return an object that the caller must release. Functions with
// Get return one that is valid as long as the object from which it was got.

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

// The only allocator; functions ignore theirs.
#define kCFAllocatorDefault ((CFAllocatorRef)NULL)

// Retain and release an object, which is deallocated with its last release. NULL is not allowed.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);

CF_EXPORT Boolean CFEqual(CFTypeRef one, CFTypeRef other);
CF_EXPORT CFHashCode CFHash(CFTypeRef object);

// Returns the type of an object, as CFStringGetTypeID() and the like return it; 0 for objects that have no
// such function.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

// Returns a description for debugging; CFShow() writes it to standard error.
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);
CF_EXPORT void CFShow(CFTypeRef object);
