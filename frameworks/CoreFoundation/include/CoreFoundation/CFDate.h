#pragma once

#include <CoreFoundation/CFBase.h>

// Absolute times are seconds since 2001-01-01 00:00 UTC.
typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;

// That moment in seconds since 1970, as time() counts them.
CF_EXPORT const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;

CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
CF_EXPORT CFTypeID CFDateGetTypeID(void);
CF_EXPORT CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime moment);
CF_EXPORT CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
CF_EXPORT CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef date, CFDateRef earlier);
CF_EXPORT CFComparisonResult CFDateCompare(CFDateRef one, CFDateRef other, void* context);
