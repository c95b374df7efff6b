#include <CoreFoundation/CFString.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

// Returns Foundation's number for an encoding; 0 for an unknown one.
static NSStringEncoding encodingOf(CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingMacRoman:
        return NSMacOSRomanStringEncoding;
    case kCFStringEncodingUTF16:
        return NSUnicodeStringEncoding;
    case kCFStringEncodingISOLatin1:
        return NSISOLatin1StringEncoding;
    case kCFStringEncodingWindowsLatin1:
        return NSWindowsCP1252StringEncoding;
    case kCFStringEncodingASCII:
        return NSASCIIStringEncoding;
    case kCFStringEncodingUTF8:
        return NSUTF8StringEncoding;
    case kCFStringEncodingUTF16BE:
        return NSUTF16BigEndianStringEncoding;
    case kCFStringEncodingUTF16LE:
        return NSUTF16LittleEndianStringEncoding;
    default:
        return 0;
    }
}

static NSStringCompareOptions optionsOf(CFStringCompareFlags flags) {
    NSStringCompareOptions options = 0;
    if (flags & kCFCompareCaseInsensitive) {
        options |= NSCaseInsensitiveSearch;
    }
    if (flags & kCFCompareBackwards) {
        options |= NSBackwardsSearch;
    }
    if (flags & kCFCompareNumerically) {
        options |= NSNumericSearch;
    }
    return options;
}

CFStringRef __CFStringMakeConstantString(const char* text) {
    static NSMutableDictionary* constants = nil;
    NSString* constant;
    @synchronized([NSString class]) {
        IN_POOL({
            NSString* made = [NSString stringWithUTF8String:text];
            if (constants == nil) {
                constants = [[NSMutableDictionary alloc] init];
            }
            constant = [constants objectForKey:made];
            if (constant == nil) {
                [constants setObject:made forKey:made];
                constant = [constants objectForKey:made];
            }
        });
    }
    return (CFStringRef)constant;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding) {
    return CFStringCreateWithBytes(allocator, (const UInt8*)text, (CFIndex)strlen(text), encoding, false);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    (void)allocator;
    (void)isExternalRepresentation; // Foundation always looks for a byte-order mark
    const NSStringEncoding known = encodingOf(encoding);
    if (known == 0) {
        return NULL;
    }
    return OWNED([[[NSString alloc] initWithBytes:bytes length:(NSUInteger)count
                                         encoding:known] autorelease]);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters, CFIndex count) {
    (void)allocator;
    return OWNED([NSString stringWithCharacters:characters length:(NSUInteger)count]);
}

CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef allocator, CFDictionaryRef options,
                                                 CFStringRef format, va_list arguments) {
    (void)allocator;
    (void)options;
    return OWNED([[[NSString alloc] initWithFormat:(NSString*)format arguments:arguments] autorelease]);
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options, CFStringRef format,
                                     ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringRef string = CFStringCreateWithFormatAndArguments(allocator, options, format, arguments);
    va_end(arguments);
    return string;
}

CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string, CFRange range) {
    (void)allocator;
    return OWNED([(NSString*)string
        substringWithRange:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)]);
}

CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string) {
    (void)allocator;
    return (CFStringRef)[(NSString*)string copy];
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maximum) {
    (void)allocator;
    (void)maximum;
    return (CFMutableStringRef)[[NSMutableString alloc] init];
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maximum, CFStringRef string) {
    (void)allocator;
    (void)maximum;
    return (CFMutableStringRef)[(NSString*)string mutableCopy];
}

void CFStringAppend(CFMutableStringRef string, CFStringRef more) {
    IN_POOL([(NSMutableString*)string appendString:(NSString*)more]);
}

void CFStringAppendCString(CFMutableStringRef string, const char* more, CFStringEncoding encoding) {
    CFStringRef text = CFStringCreateWithCString(NULL, more, encoding);
    if (text == NULL) {
        return;
    }
    CFStringAppend(string, text);
    CFRelease(text);
}

void CFStringAppendFormat(CFMutableStringRef string, CFDictionaryRef options, CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringRef more = CFStringCreateWithFormatAndArguments(NULL, options, format, arguments);
    va_end(arguments);
    CFStringAppend(string, more);
    CFRelease(more);
}

CFIndex CFStringGetLength(CFStringRef string) {
    return (CFIndex)[(NSString*)string length];
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    return [(NSString*)string characterAtIndex:(NSUInteger)index];
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    [(NSString*)string getCharacters:buffer
                               range:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
    const NSStringEncoding known = encodingOf(encoding);
    BOOL fits = NO;
    if (known == 0 || size <= 0) {
        return false;
    }
    IN_POOL({
        NSData* bytes = [(NSString*)string dataUsingEncoding:known];
        fits = bytes != nil && (CFIndex)[bytes length] < size;
        if (fits) {
            [bytes getBytes:buffer length:[bytes length]];
            buffer[[bytes length]] = '\0';
        }
    });
    return fits;
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
    (void)string;
    (void)encoding;
    return NULL;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return length * 3;
    case kCFStringEncodingUTF16:
        return length * 2 + 2; // with a byte-order mark
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return length * 2;
    default:
        return length;
    }
}

CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other, CFStringCompareFlags flags) {
    CFComparisonResult result;
    IN_POOL(result = [(NSString*)one compare:(NSString*)other options:optionsOf(flags)]);
    return result;
}

Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix) {
    BOOL has;
    IN_POOL(has = [(NSString*)string hasPrefix:(NSString*)prefix]);
    return has;
}

Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix) {
    BOOL has;
    IN_POOL(has = [(NSString*)string hasSuffix:(NSString*)suffix]);
    return has;
}

CFRange CFStringFind(CFStringRef string, CFStringRef sought, CFStringCompareFlags flags) {
    NSRange range;
    IN_POOL(range = [(NSString*)string rangeOfString:(NSString*)sought options:optionsOf(flags)]);
    return range.location == NSNotFound ? CFRangeMake(kCFNotFound, 0)
                                        : CFRangeMake((CFIndex)range.location, (CFIndex)range.length);
}
