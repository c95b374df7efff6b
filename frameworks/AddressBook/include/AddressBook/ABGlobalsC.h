#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The constants for C, which are those of Objective-C. There they are NSString*, and have to be cast where a
// function of the C interface takes a CFStringRef.
#include <AddressBook/ABGlobals.h>

// The types of records.
AB_EXTERN CFStringRef const kABPersonRecordType;
AB_EXTERN CFStringRef const kABGroupRecordType;
