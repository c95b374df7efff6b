#pragma once

#import <AddressBook/ABRecord.h>
#import <AddressBook/ABTypedefs.h>

@class ABPerson, ABSearchElement;

// A group of people and of other groups.
@interface ABGroup : ABRecord

// People, in the order in which they joined. Both answer NO when there is nothing to do: already in, or not
// in. Both raise NSInvalidArgumentException for nil.
- (NSArray*)members;
- (BOOL)addMember:(ABPerson*)person;
- (BOOL)removeMember:(ABPerson*)person;

// Groups inside this one. A group can not be inside itself, directly or by way of others. Both raise
// NSInvalidArgumentException for nil.
- (NSArray*)subgroups;
- (BOOL)addSubgroup:(ABGroup*)group;
- (BOOL)removeSubgroup:(ABGroup*)group;

// The groups that have this one as a subgroup.
- (NSArray*)parentGroups;

// Which entry of a multi-value property of a person this group uses (a mail to the group, say); nil stands
// for the primary entry. Answers NO when the person is no member or has no such entry. Both raise
// NSInvalidArgumentException when the property or the person is nil.
- (BOOL)setDistributionIdentifier:(NSString*)identifier
                      forProperty:(NSString*)property
                           person:(ABPerson*)person;
- (NSString*)distributionIdentifierForProperty:(NSString*)property person:(ABPerson*)person;

// As on ABPerson, for groups.
+ (NSInteger)addPropertiesAndTypes:(NSDictionary*)properties;
+ (NSInteger)removeProperties:(NSArray*)properties;
+ (NSArray*)properties;
+ (ABPropertyType)typeOfProperty:(NSString*)property;

@end

@interface ABGroup (ABGroup_Convenience)

+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison;

@end
