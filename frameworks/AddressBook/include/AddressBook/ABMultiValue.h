#pragma once

#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

// The entries of a property that holds several values: each has a value, a label and an identifier that stays
// the same when the list is copied, saved and read again. Indexes out of bounds raise NSRangeException.
@interface ABMultiValue : NSObject <NSCopying, NSMutableCopying, NSFastEnumeration> {
    void* _list;
    unsigned long _mutations;
}

- (NSUInteger)count;
- (id)valueAtIndex:(NSUInteger)index;
- (NSString*)labelAtIndex:(NSUInteger)index;
- (NSString*)identifierAtIndex:(NSUInteger)index;

// NSNotFound when no entry has the identifier.
- (NSUInteger)indexForIdentifier:(NSString*)identifier;

// The entry to use when only one is wanted: the first unless another was chosen; nil when there are no
// entries.
- (NSString*)primaryIdentifier;

// The type of a property that would hold these entries; kABErrorInProperty when there are none or their types
// differ.
- (ABPropertyType)propertyType;

// nil when no entry has the identifier.
- (id)valueForIdentifier:(NSString*)identifier;
- (NSString*)labelForIdentifier:(NSString*)identifier;

@end

@interface ABMutableMultiValue : ABMultiValue

// The new entry's identifier. Raises NSInvalidArgumentException when the value or the label is nil.
- (NSString*)addValue:(id)value withLabel:(NSString*)label;
- (NSString*)insertValue:(id)value withLabel:(NSString*)label atIndex:(NSUInteger)index;

- (BOOL)removeValueAndLabelAtIndex:(NSUInteger)index;

// Both raise NSInvalidArgumentException when what is to be put in place is nil.
- (BOOL)replaceValueAtIndex:(NSUInteger)index withValue:(id)value;
- (BOOL)replaceLabelAtIndex:(NSUInteger)index withLabel:(NSString*)label;

// NO when no entry has the identifier. Raises NSInvalidArgumentException for nil.
- (BOOL)setPrimaryIdentifier:(NSString*)identifier;

@end
