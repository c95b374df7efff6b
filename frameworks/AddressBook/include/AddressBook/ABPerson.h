#pragma once

#import <AddressBook/ABRecord.h>
#import <AddressBook/ABTypedefs.h>

@class ABSearchElement;

// A person or a company.
@interface ABPerson : ABRecord

// The groups that have this person as a member.
- (NSArray*)parentGroups;

// The records that are shown as one card with this one, itself included.
- (NSArray*)linkedPeople;

// Adds properties to every person: names and type numbers (NSNumber). Answers how many were new, -1 when a
// name or a type is not valid (nothing is added then).
+ (NSInteger)addPropertiesAndTypes:(NSDictionary*)properties;

// Removes added properties, and their values from every person. Answers how many were removed.
+ (NSInteger)removeProperties:(NSArray*)properties;

// The names of all properties of people.
+ (NSArray*)properties;

// kABErrorInProperty when people have no such property.
+ (ABPropertyType)typeOfProperty:(NSString*)property;

@end

@interface ABPerson (ABPerson_Convenience)

// A search for people. A label restricts it to entries with that label, a key to that field of dictionary
// values. A nil value goes only with kABEqual (the property is set) and kABNotEqual (it is not);
// NSInvalidArgumentException otherwise, and for a nil property or an unknown comparison.
+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison;

// A person that is in no address book yet, from one card; nil when the data is none.
- (id)initWithVCardRepresentation:(NSData*)vCardData;
- (NSData*)vCardRepresentation;

@end
