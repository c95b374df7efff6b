// Functions for all objects. As these are Foundation's objects, most functions send one message.

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

CFTypeRef CFRetain(CFTypeRef object) {
    return [(id)object retain];
}

void CFRelease(CFTypeRef object) {
    IN_POOL([(id)object release]); // dealloc may autorelease other objects
}

CFIndex CFGetRetainCount(CFTypeRef object) {
    return (CFIndex)[(id)object retainCount];
}

Boolean CFEqual(CFTypeRef one, CFTypeRef other) {
    BOOL equal;
    IN_POOL(equal = [(id)one isEqual:(id)other]);
    return equal;
}

CFHashCode CFHash(CFTypeRef object) {
    return [(id)object hash];
}

// The type ids of classes: their places in this list, from 1 on.
typedef enum { kString = 1, kArray, kDictionary, kData, kDate, kNumber, kTypes } TypeID;

static Class classOf(TypeID type) {
    switch (type) {
    case kString:
        return [NSString class];
    case kArray:
        return [NSArray class];
    case kDictionary:
        return [NSDictionary class];
    case kData:
        return [NSData class];
    case kDate:
        return [NSDate class];
    case kNumber:
        return [NSNumber class];
    default:
        return Nil;
    }
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    for (TypeID type = kString; type < kTypes; ++type) {
        if ([(id)object isKindOfClass:classOf(type)]) {
            return type;
        }
    }
    return 0;
}

CFTypeID CFStringGetTypeID(void) {
    return kString;
}

CFTypeID CFArrayGetTypeID(void) {
    return kArray;
}

CFTypeID CFDictionaryGetTypeID(void) {
    return kDictionary;
}

CFTypeID CFDataGetTypeID(void) {
    return kData;
}

CFTypeID CFDateGetTypeID(void) {
    return kDate;
}

CFTypeID CFNumberGetTypeID(void) {
    return kNumber;
}

CFStringRef CFCopyDescription(CFTypeRef object) {
    return OWNED([(id)object description]);
}

void CFShow(CFTypeRef object) {
    IN_POOL({
        NSString* text = object ? [(id)object description] : @"(null)";
        NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
        fwrite([bytes bytes], 1, [bytes length], stderr);
        fputc('\n', stderr);
    });
}
