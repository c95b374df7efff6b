#pragma once

#include <CoreFoundation/CFBase.h>
#include <stdarg.h>

// Encodings of text as bytes.
typedef UInt32 CFStringEncoding;
enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100
};

typedef CFOptionFlags CFStringCompareFlags;
enum { kCFCompareCaseInsensitive = 1, kCFCompareBackwards = 4, kCFCompareNumerically = 64 };

// A constant string, in ASCII or UTF-8: the same object for the same text, which is never released. It is
// made when the expression is first evaluated, so it cannot initialise a static variable.
#define CFSTR(text) __CFStringMakeConstantString("" text "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

CF_EXPORT CFTypeID CFStringGetTypeID(void);

// Return a string of bytes; NULL when the bytes are not valid in the encoding.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                              CFStringEncoding encoding, Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters,
                                                   CFIndex count);

// Formats like printf; %@ takes an object. The options are ignored.
CF_EXPORT CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options,
                                               CFStringRef format, ...);
CF_EXPORT CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef allocator, CFDictionaryRef options,
                                                           CFStringRef format, va_list arguments);
CF_EXPORT CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string,
                                                  CFRange range);
CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);

// The maximum length is ignored.
CF_EXPORT CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maximum);
CF_EXPORT CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maximum,
                                                       CFStringRef string);
CF_EXPORT void CFStringAppend(CFMutableStringRef string, CFStringRef more);
CF_EXPORT void CFStringAppendCString(CFMutableStringRef string, const char* more, CFStringEncoding encoding);
CF_EXPORT void CFStringAppendFormat(CFMutableStringRef string, CFDictionaryRef options, CFStringRef format,
                                    ...);

// Returns the length in UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

// Writes the text and a zero byte. Returns false when that does not fit into [size] bytes, or when the
// encoding does not have all characters.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                                     CFStringEncoding encoding);

// Always returns NULL here, as it may do everywhere: programs must then call CFStringGetCString().
CF_EXPORT const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

// Returns the most bytes that [length] UTF-16 units can take, without the zero byte.
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other, CFStringCompareFlags flags);
CF_EXPORT Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix);
CF_EXPORT Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix);

// Returns the range of the first occurrence of [sought]; its location is kCFNotFound when there is none.
CF_EXPORT CFRange CFStringFind(CFStringRef string, CFStringRef sought, CFStringCompareFlags flags);
