#pragma once

#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

@class ABPerson, ABRecord, ABSearchElement;

// The user's address book. Use it from one thread at a time, and not from the thread on which
// kABDatabaseChangedExternallyNotification arrives. Changes to it and to its records stay in memory, where
// searches and lists see them, until they are saved. What other programs save becomes visible, except where
// this one has unsaved changes.
@interface ABAddressBook : NSObject {
  @private
    void* _book;
}

// Returns the address book of this process; nil, with a line in the log, when its database cannot be opened.
// Notifications are sent from the first call on.
+ (ABAddressBook*)sharedAddressBook;
+ (ABAddressBook*)addressBook;

// Returns the records that meet the search, in the order in which they were added. A record that another
// program deletes later stays in the array, without values. Raises NSInvalidArgumentException for nil.
- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search;

// Write all changes or none. Return YES also when there are none, and NO also when a change was refused since
// the last save because the address book is read-only. When other programs have deleted records that have
// changes here, everything else is written: YES, with an error that names those records; -save leaves that
// error to the next call of -saveAndReturnError:.
- (BOOL)save;
- (BOOL)saveAndReturnError:(NSError**)error;
- (BOOL)hasUnsavedChanges;

// Returns the user's own card; nil when none was chosen.
- (ABPerson*)me;
- (void)setMe:(ABPerson*)moi;

// Returns the record with this id; nil when the address book has none. Raises NSInvalidArgumentException for
// nil.
- (ABRecord*)recordForUniqueId:(NSString*)uniqueId;

// Returns the name of the record's class; nil for nil and for an id that is not in the address book.
- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId;
- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId error:(NSError**)error;

// Adds a record. Returns NO for one that is in the address book already. Raises NSInvalidArgumentException
// for nil.
- (BOOL)addRecord:(ABRecord*)record;
- (BOOL)addRecord:(ABRecord*)record error:(NSError**)error;

// Removes a record, also from its groups. Returns NO for one that is not in the address book. Raises
// NSInvalidArgumentException for nil.
- (BOOL)removeRecord:(ABRecord*)record;
- (BOOL)removeRecord:(ABRecord*)record error:(NSError**)error;

// Return all people and all groups, in the order in which they were added.
- (NSArray*)people;
- (NSArray*)groups;

// Returns the ISO code, in lower case, of the country whose address format is the default.
- (NSString*)defaultCountryCode;

// Returns kABFirstNameFirst or kABLastNameFirst.
- (NSInteger)defaultNameOrdering;

@end

@interface ABAddressBook (ABFormattedAddress)

// Returns an address (a dictionary with kABAddressStreetKey and so on) in lines, in the format of the country
// of its country code, or of the default country when it has none. The range of each field has an attribute
// named by the field's key, whose value is that country's word for the field: "ZIP", "Postal Code", "Code
// Postal". nil for nil.
- (NSAttributedString*)formattedAddressFromDictionary:(NSDictionary*)address;

@end
