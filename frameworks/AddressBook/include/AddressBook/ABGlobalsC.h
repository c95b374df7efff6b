#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The constants for C. They are those of Objective-C: there a constant is an NSString*, which is cast where a
// function of the C interface takes a CFStringRef.
#include <AddressBook/ABGlobals.h>

// The types of records.
AB_EXTERN CFStringRef const kABPersonRecordType;
AB_EXTERN CFStringRef const kABGroupRecordType;
