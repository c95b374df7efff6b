#pragma once

#import <AddressBook/ABRecord.h>
#import <AddressBook/ABTypedefs.h>

@class ABPerson, ABSearchElement;

// A group of people and of other groups.
@interface ABGroup : ABRecord

// Return, add and remove the people in the group, in the order in which they joined. Adding and removing
// return NO when there is nothing to do: the person is in the group already, or is not in it. They raise
// NSInvalidArgumentException for nil.
- (NSArray*)members;
- (BOOL)addMember:(ABPerson*)person;
- (BOOL)removeMember:(ABPerson*)person;

// Return, add and remove the groups in this one. A group cannot be in itself, directly or through other
// groups. Adding and removing raise NSInvalidArgumentException for nil.
- (NSArray*)subgroups;
- (BOOL)addSubgroup:(ABGroup*)group;
- (BOOL)removeSubgroup:(ABGroup*)group;

// Returns the groups that have this one as a subgroup.
- (NSArray*)parentGroups;

// Set and return which entry of a person's multi-value property this group uses, for instance for a mail to
// the group; nil means the primary entry. Setting returns NO when the person is no member or has no such
// entry. Both raise NSInvalidArgumentException when the property or the person is nil.
- (BOOL)setDistributionIdentifier:(NSString*)identifier
                      forProperty:(NSString*)property
                           person:(ABPerson*)person;
- (NSString*)distributionIdentifierForProperty:(NSString*)property person:(ABPerson*)person;

// Like the methods of ABPerson, for groups.
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
