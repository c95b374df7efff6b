#pragma once

#import <Foundation/Foundation.h>

@class ABAddressBook;

// The base class of people and groups: properties, a unique id that never changes, and the dates of creation
// and modification, which the framework sets. Changes stay in memory until the address book is saved.
@interface ABRecord : NSObject {
  @private
    void* _record;
}

// Makes a new record for the shared address book. It is saved only after it has been added (-[ABAddressBook
// addRecord:]).
- (id)init;
- (id)initWithAddressBook:(ABAddressBook*)addressBook;

// Returns the value of a property, an immutable object; nil when it is not set. Raises
// NSInvalidArgumentException for nil.
- (id)valueForProperty:(NSString*)property;

// Set a property; nil removes the value. Return NO, with an error, when the property cannot be set: only the
// framework sets it, records of this class have no such property, or the address book is read-only. Raise
// NSInvalidArgumentException when the value is not of the property's type, or the property is nil.
- (BOOL)setValue:(id)value forProperty:(NSString*)property;
- (BOOL)setValue:(id)value forProperty:(NSString*)property error:(NSError**)error;

// Removes the value of a property. Returns YES also when there was none.
- (BOOL)removeValueForProperty:(NSString*)property;

- (BOOL)isReadOnly;

// Key-value coding, so that sort descriptors and predicates accept the names of properties, also of added
// ones. Any other key is looked up as usual (uniqueId, displayName). Setting a property that cannot be set
// raises NSInvalidArgumentException.
- (id)valueForKey:(NSString*)key;
- (void)setValue:(id)value forKey:(NSString*)key;

@end

@interface ABRecord (ABRecord_Convenience)

// Returns the unique id, "<UUID>:ABPerson" or "<UUID>:ABGroup".
- (NSString*)uniqueId;

// Returns the name to show: of a person the name, the company, or the first other property that identifies
// the person; of a group its name. Empty when there is none.
- (NSString*)displayName;

@end
