#pragma once

#include <CoreFoundation/CFBase.h>

// How an array retains its values. Arrays here hold only objects: pass &kCFTypeArrayCallBacks. Any other
// pointer, also NULL, raises NSInvalidArgumentException.
typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* one, const void* other);
} CFArrayCallBacks;
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

typedef CFComparisonResult (*CFComparatorFunction)(const void* one, const void* other, void* context);

CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                   const CFArrayCallBacks* callBacks);
CF_EXPORT CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array);

// The capacity is only a hint.
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks* callBacks);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFArrayRef array);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);

// An index out of bounds raises NSRangeException.
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CF_EXPORT Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value);
CF_EXPORT CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CF_EXPORT void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index);
CF_EXPORT void CFArraySortValues(CFMutableArrayRef array, CFRange range, CFComparatorFunction comparator,
                                 void* context);
