#pragma once

#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

// The entries of a property with several values. Each entry has a value, a label, and an identifier that
// stays the same when the list is copied, saved and loaded. Indexes out of bounds raise NSRangeException.
@interface ABMultiValue : NSObject <NSCopying, NSMutableCopying, NSFastEnumeration> {
    void* _list;
    unsigned long _mutations;
}

- (NSUInteger)count;
- (id)valueAtIndex:(NSUInteger)index;
- (NSString*)labelAtIndex:(NSUInteger)index;
- (NSString*)identifierAtIndex:(NSUInteger)index;

// Returns the index of an entry; NSNotFound when no entry has the identifier.
- (NSUInteger)indexForIdentifier:(NSString*)identifier;

// Returns the identifier of the entry to use when only one is wanted: the first, unless another one was
// chosen; nil when there are no entries.
- (NSString*)primaryIdentifier;

// Returns the type of a property with these entries; kABErrorInProperty when there are none, or their types
// differ.
- (ABPropertyType)propertyType;

// Return an entry's value and label; nil when no entry has the identifier.
- (id)valueForIdentifier:(NSString*)identifier;
- (NSString*)labelForIdentifier:(NSString*)identifier;

@end

@interface ABMutableMultiValue : ABMultiValue

// Add an entry and return its identifier. Raise NSInvalidArgumentException when the value or the label is
// nil.
- (NSString*)addValue:(id)value withLabel:(NSString*)label;
- (NSString*)insertValue:(id)value withLabel:(NSString*)label atIndex:(NSUInteger)index;

- (BOOL)removeValueAndLabelAtIndex:(NSUInteger)index;

// Replace an entry's value and label. Raise NSInvalidArgumentException when the new one is nil.
- (BOOL)replaceValueAtIndex:(NSUInteger)index withValue:(id)value;
- (BOOL)replaceLabelAtIndex:(NSUInteger)index withLabel:(NSString*)label;

// Chooses the primary entry. Returns NO when no entry has the identifier. Raises NSInvalidArgumentException
// for nil.
- (BOOL)setPrimaryIdentifier:(NSString*)identifier;

@end
