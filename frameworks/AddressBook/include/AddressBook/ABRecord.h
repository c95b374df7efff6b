#pragma once

#import <Foundation/Foundation.h>

@class ABAddressBook;

// What a person and a group have in common: properties, a unique id that never changes, and creation and
// modification dates that the framework keeps. Changes stay in memory until the address book is saved.
@interface ABRecord : NSObject {
  @private
    void* _record;
}

// A new record of the shared address book. It is saved only once it has been added (-[ABAddressBook
// addRecord:]).
- (id)init;
- (id)initWithAddressBook:(ABAddressBook*)addressBook;

// The value of a property, an immutable object; nil when it is not set. Raises NSInvalidArgumentException for
// nil.
- (id)valueForProperty:(NSString*)property;

// Sets a property; nil removes the value. NO, with the error, when the property cannot be set (its value is
// the framework's own, the record's class has no such property, the address book is read-only). Raises
// NSInvalidArgumentException when the value is not of the property's type or the property is nil.
- (BOOL)setValue:(id)value forProperty:(NSString*)property;
- (BOOL)setValue:(id)value forProperty:(NSString*)property error:(NSError**)error;

// Removes the value of a property; YES also when there was none.
- (BOOL)removeValueForProperty:(NSString*)property;

- (BOOL)isReadOnly;

// Key-value coding, so that sort descriptors and predicates take names of properties: the value of that
// property, added ones included. Any other key is looked up as everywhere (uniqueId, displayName). Setting a
// property that cannot be set raises NSInvalidArgumentException.
- (id)valueForKey:(NSString*)key;
- (void)setValue:(id)value forKey:(NSString*)key;

@end

@interface ABRecord (ABRecord_Convenience)

// "<UUID>:ABPerson" or "<UUID>:ABGroup".
- (NSString*)uniqueId;

// The name to show: of a person the name, the company or the first of the other properties that says who it
// is; of a group its name. Empty when nothing is known.
- (NSString*)displayName;

@end
