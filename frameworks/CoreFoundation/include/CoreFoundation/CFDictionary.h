#pragma once

#include <CoreFoundation/CFBase.h>

// How a dictionary retains its keys and values. Dictionaries here hold only objects: pass
// &kCFTypeDictionaryKeyCallBacks (or the one that copies strings) and &kCFTypeDictionaryValueCallBacks. Any
// other pointer, also NULL, raises NSInvalidArgumentException. Keys are always copied.
typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* one, const void* other);
    CFHashCode (*hash)(const void* value);
} CFDictionaryKeyCallBacks;
typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* one, const void* other);
} CFDictionaryValueCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                             CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                             const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef dictionary);

// The capacity is only a hint.
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                                           const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                               CFDictionaryRef dictionary);
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);

// Return the value of a key, NULL when there is none. The second function returns whether there is the key.
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                                const void** value);

// Writes all keys, and their values in the same order, into arrays; either may be NULL.
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                            const void** values);

// CFDictionaryAddValue() does nothing for an existing key.
CF_EXPORT void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
