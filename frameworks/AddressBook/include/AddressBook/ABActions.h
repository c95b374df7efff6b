#pragma once

#import <Foundation/Foundation.h>

@class ABPerson;

// The methods of the principal class of an action plug-in: a bundle that adds an item to the menu of a
// property's entries in the address book application. Declared so that such bundles compile; no application
// for this address book loads them.
@interface NSObject (ABActionDelegate)

// Returns the property whose entries have the item.
- (NSString*)actionProperty;

// Returns the item's title for the entry with this identifier, which is nil for a property that is no
// multi-value.
- (NSString*)titleForPerson:(ABPerson*)person identifier:(NSString*)identifier;

// Called when the item was chosen.
- (void)performActionForPerson:(ABPerson*)person identifier:(NSString*)identifier;

// Returns whether the item can be chosen. Optional; without it, the item can be chosen.
- (BOOL)shouldEnableActionForPerson:(ABPerson*)person identifier:(NSString*)identifier;

@end
