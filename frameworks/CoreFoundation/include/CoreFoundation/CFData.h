#pragma once

#include <CoreFoundation/CFBase.h>

// Bytes.
CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CF_EXPORT CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);
CF_EXPORT void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer);
