#pragma once

#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

@class ABPerson, ABRecord, ABSearchElement;

// The user's address book. Use it from one thread at a time, and not from the one on which
// kABDatabaseChangedExternallyNotification arrives. Changes to it and to its records stay in memory, where
// searches and lists see them, until they are saved; what others save shows in all that was not changed here.
@interface ABAddressBook : NSObject {
  @private
    void* _book;
}

// The address book of this process; nil, with a line in the log, when its database cannot be opened.
// Notifications are sent from the first call on.
+ (ABAddressBook*)sharedAddressBook;
+ (ABAddressBook*)addressBook;

// The records that meet the search, in the order in which they were added. One that another program deletes
// before it is looked at keeps its place, without values. Raises NSInvalidArgumentException for nil.
- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search;

// Writes all changes or none; YES also when there are none. When other programs deleted records that were
// changed here, before or after, everything else is written: YES, with an error that names those records; a
// save without [error] leaves that to the next one. NO also when a record was refused since, as the address
// book may only be read.
- (BOOL)save;
- (BOOL)saveAndReturnError:(NSError**)error;
- (BOOL)hasUnsavedChanges;

// The user's own card; nil when none was chosen.
- (ABPerson*)me;
- (void)setMe:(ABPerson*)moi;

// nil for an id that is not in the address book. Raises NSInvalidArgumentException for nil.
- (ABRecord*)recordForUniqueId:(NSString*)uniqueId;

// The name of the record's class; nil for nil and for an id that is not in the address book.
- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId;
- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId error:(NSError**)error;

// NO for a record that is in the address book already. Raises NSInvalidArgumentException for nil.
- (BOOL)addRecord:(ABRecord*)record;
- (BOOL)addRecord:(ABRecord*)record error:(NSError**)error;

// NO for a record that is not in the address book. The record leaves its groups, too. Raises
// NSInvalidArgumentException for nil.
- (BOOL)removeRecord:(ABRecord*)record;
- (BOOL)removeRecord:(ABRecord*)record error:(NSError**)error;

// All people, all groups, in the order in which they were added.
- (NSArray*)people;
- (NSArray*)groups;

// The ISO code, in lower case, of the country whose address format is the user's.
- (NSString*)defaultCountryCode;

// kABFirstNameFirst or kABLastNameFirst.
- (NSInteger)defaultNameOrdering;

@end

@interface ABAddressBook (ABFormattedAddress)

// An address (kABAddressStreetKey and so on) in lines, as it is written in the country of its country code,
// or in the default country when it has none. Each field that is there has, over its range, an attribute
// named by its key with that country's word for it: "ZIP", "Postal Code", "Code Postal". nil for nil.
- (NSAttributedString*)formattedAddressFromDictionary:(NSDictionary*)address;

@end
