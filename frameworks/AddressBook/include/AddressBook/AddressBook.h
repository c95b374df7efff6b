#pragma once

// The AddressBook framework: people, groups and their properties, kept in one address book for each user.
// Objective-C programs can use the classes and the C functions, C programs the functions.

#ifdef __OBJC__
#import <AddressBook/ABActions.h>
#import <AddressBook/ABAddressBook.h>
#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABGroup.h>
#import <AddressBook/ABImageLoading.h>
#import <AddressBook/ABMultiValue.h>
#import <AddressBook/ABPerson.h>
#import <AddressBook/ABRecord.h>
#import <AddressBook/ABSearchElement.h>
#import <AddressBook/ABTypedefs.h>
#endif

#include <AddressBook/ABActionsC.h>
#include <AddressBook/ABAddressBookC.h>
#include <AddressBook/ABGlobalsC.h>
