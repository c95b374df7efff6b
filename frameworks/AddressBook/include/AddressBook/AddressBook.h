#pragma once

// The AddressBook framework: people, groups and their properties, kept in one address book per user.

#import <AddressBook/ABAddressBook.h>
#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABGroup.h>
#import <AddressBook/ABMultiValue.h>
#import <AddressBook/ABPerson.h>
#import <AddressBook/ABRecord.h>
#import <AddressBook/ABSearchElement.h>
#import <AddressBook/ABTypedefs.h>
