#pragma once

#import <Foundation/Foundation.h>

@class ABPerson;

// What the principal class of an action plug-in has: a bundle that adds an item to the menu at entries of one
// property in the address book application. Declared so that such bundles compile; no application for this
// address book loads them.
@interface NSObject (ABActionDelegate)

// The property at whose entries the item stands.
- (NSString*)actionProperty;

// The item's title for the entry with this identifier; of a property that is no multi-value, nil.
- (NSString*)titleForPerson:(ABPerson*)person identifier:(NSString*)identifier;

// The item was chosen.
- (void)performActionForPerson:(ABPerson*)person identifier:(NSString*)identifier;

// Whether the item can be chosen; it can when this is not there.
- (BOOL)shouldEnableActionForPerson:(ABPerson*)person identifier:(NSString*)identifier;

@end
