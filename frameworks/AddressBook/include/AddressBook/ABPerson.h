#pragma once

#import <AddressBook/ABRecord.h>
#import <AddressBook/ABTypedefs.h>

@class ABSearchElement;

// A person or a company.
@interface ABPerson : ABRecord

// Returns the groups that have this person as a member.
- (NSArray*)parentGroups;

// Returns the records that are shown as one card with this one, including itself.
- (NSArray*)linkedPeople;

// Adds properties to all people; the dictionary has their names and types (NSNumber). Returns how many were
// new; -1 when a name or a type is not valid, and then adds none.
+ (NSInteger)addPropertiesAndTypes:(NSDictionary*)properties;

// Removes added properties, with their values, from all people. Returns how many were removed.
+ (NSInteger)removeProperties:(NSArray*)properties;

// Returns the names of all properties of people.
+ (NSArray*)properties;

// Returns the type of a property; kABErrorInProperty when people have no such property.
+ (ABPropertyType)typeOfProperty:(NSString*)property;

@end

@interface ABPerson (ABPerson_Convenience)

// Returns a search for people. A label restricts it to entries with that label, a key to that field of
// dictionary values. A nil value is allowed only with kABEqual (the property is set) and kABNotEqual (it is
// not set). Raises NSInvalidArgumentException for a nil value otherwise, a nil property and an unknown
// comparison.
+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison;

// Makes a person, which is not added to the address book, from a vCard; nil when the data is not one.
- (id)initWithVCardRepresentation:(NSData*)vCardData;
- (NSData*)vCardRepresentation;

@end
