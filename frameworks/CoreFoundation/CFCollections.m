// Arrays and dictionaries, which hold objects and retain them.

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

static const void* retain(CFAllocatorRef allocator, const void* value) {
    (void)allocator;
    return CFRetain(value);
}

static const void* copyText(CFAllocatorRef allocator, const void* value) {
    (void)allocator;
    return [(id)value copy];
}

static void release(CFAllocatorRef allocator, const void* value) {
    (void)allocator;
    CFRelease(value);
}

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, retain, release, CFCopyDescription, CFEqual};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0,       retain, release, CFCopyDescription,
                                                                CFEqual, CFHash};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {
    0, copyText, release, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, retain, release, CFCopyDescription,
                                                                    CFEqual};

static void demand(BOOL holdsObjects, NSString* callBacks) {
    if (!holdsObjects) {
        [NSException raise:NSInvalidArgumentException
                    format:@"Only objects can be kept here: pass %@", callBacks];
    }
}

static void demandForArray(const CFArrayCallBacks* callBacks) {
    demand(callBacks != NULL && callBacks->retain == retain, @"&kCFTypeArrayCallBacks");
}

static void demandForDictionary(const CFDictionaryKeyCallBacks* keys,
                                const CFDictionaryValueCallBacks* values) {
    demand(keys != NULL && (keys->retain == retain || keys->retain == copyText) && values != NULL &&
               values->retain == retain,
           @"&kCFTypeDictionaryKeyCallBacks and &kCFTypeDictionaryValueCallBacks");
}

static NSRange rangeOf(CFRange range) {
    return NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length);
}

CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks) {
    (void)allocator;
    demandForArray(callBacks);
    return (CFArrayRef)[[NSArray alloc] initWithObjects:(id*)values count:(NSUInteger)count];
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array) {
    (void)allocator;
    return (CFArrayRef)[(NSArray*)array copy];
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                       const CFArrayCallBacks* callBacks) {
    (void)allocator;
    demandForArray(callBacks);
    return (CFMutableArrayRef)[[NSMutableArray alloc] initWithCapacity:(NSUInteger)capacity];
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity, CFArrayRef array) {
    (void)allocator;
    (void)capacity;
    return (CFMutableArrayRef)[(NSArray*)array mutableCopy];
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    return (CFIndex)[(NSArray*)array count];
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    const void* value;
    IN_POOL(value = [(NSArray*)array objectAtIndex:(NSUInteger)index]);
    return value;
}

CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value) {
    NSUInteger index;
    IN_POOL(index = [(NSArray*)array indexOfObject:(id)value inRange:rangeOf(range)]);
    return index == NSNotFound ? kCFNotFound : (CFIndex)index;
}

Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value) {
    return CFArrayGetFirstIndexOfValue(array, range, value) != kCFNotFound;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    [(NSMutableArray*)array addObject:(id)value];
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index) {
    IN_POOL([(NSMutableArray*)array removeObjectAtIndex:(NSUInteger)index]);
}

// The comparator of a sort, with its context.
typedef struct {
    CFComparatorFunction comparator;
    void* context;
} Comparison;

static NSComparisonResult compare(id one, id other, void* context) {
    const Comparison* comparison = context;
    return comparison->comparator(one, other, comparison->context);
}

void CFArraySortValues(CFMutableArrayRef array, CFRange range, CFComparatorFunction comparator,
                       void* context) {
    Comparison comparison = {comparator, context};
    IN_POOL({
        NSArray* sorted =
            [[(NSArray*)array subarrayWithRange:rangeOf(range)] sortedArrayUsingFunction:compare
                                                                                 context:&comparison];
        [(NSMutableArray*)array replaceObjectsInRange:rangeOf(range) withObjectsFromArray:sorted];
    });
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    (void)allocator;
    demandForDictionary(keyCallBacks, valueCallBacks);
    return (CFDictionaryRef)[[NSDictionary alloc] initWithObjects:(id*)values
                                                          forKeys:(id*)keys
                                                            count:(NSUInteger)count];
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef dictionary) {
    (void)allocator;
    return (CFDictionaryRef)[(NSDictionary*)dictionary copy];
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    (void)allocator;
    demandForDictionary(keyCallBacks, valueCallBacks);
    return (CFMutableDictionaryRef)[[NSMutableDictionary alloc] initWithCapacity:(NSUInteger)capacity];
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary) {
    (void)allocator;
    (void)capacity;
    return (CFMutableDictionaryRef)[(NSDictionary*)dictionary mutableCopy];
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return (CFIndex)[(NSDictionary*)dictionary count];
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const void* value;
    IN_POOL(value = [(NSDictionary*)dictionary objectForKey:(id)key]);
    return value;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return CFDictionaryGetValue(dictionary, key) != NULL;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key, const void** value) {
    const void* found = CFDictionaryGetValue(dictionary, key);
    if (found != NULL && value != NULL) {
        *value = found;
    }
    return found != NULL;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values) {
    IN_POOL({
        NSArray* all = [(NSDictionary*)dictionary allKeys];
        for (NSUInteger i = 0; i < [all count]; ++i) {
            id key = [all objectAtIndex:i];
            if (keys != NULL) {
                keys[i] = key;
            }
            if (values != NULL) {
                values[i] = [(NSDictionary*)dictionary objectForKey:key];
            }
        }
    });
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (!CFDictionaryContainsKey(dictionary, key)) {
        CFDictionarySetValue(dictionary, key, value);
    }
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    IN_POOL([(NSMutableDictionary*)dictionary setObject:(id)value forKey:(id)key]);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    IN_POOL([(NSMutableDictionary*)dictionary removeObjectForKey:(id)key]);
}
