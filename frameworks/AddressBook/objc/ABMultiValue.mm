#import <AddressBook/ABMultiValue.h>

#include "bridge.h"
#include "multi_value.h"

#include "frameworks/AddressBook/store/store.h"

using namespace addressbook;

// One entry; it never changes, so that copies of a list share it.
@interface ABMultiValueEntry : NSObject {
  @public
    NSString* _identifier;
    NSString* _label;
    id _value;
}
- (id)initWithValue:(id)value label:(NSString*)label identifier:(NSString*)identifier;
@end

@implementation ABMultiValueEntry
- (id)initWithValue:(id)value label:(NSString*)label identifier:(NSString*)identifier {
    if ((self = [super init]) != nil) {
        _value = [value respondsToSelector:@selector(copyWithZone:)] ? [value copy] : [value retain];
        _label = [label copy];
        _identifier = [identifier copy];
    }
    return self;
}
- (void)dealloc {
    [_value release];
    [_label release];
    [_identifier release];
    [super dealloc];
}
- (BOOL)isEqual:(id)other {
    if (![other isKindOfClass:[ABMultiValueEntry class]])
        return NO;
    ABMultiValueEntry* entry = other;
    return [_identifier isEqual:entry->_identifier] && [_label isEqual:entry->_label] &&
           [_value isEqual:entry->_value];
}
- (NSUInteger)hash {
    return [_identifier hash];
}
- (NSString*)description {
    return [NSString stringWithFormat:@"%@ %@ (%@)", _label, _value, _identifier];
}
@end

@implementation ABMultiValue

- (id)init {
    if ((self = [super init]) != nil)
        _entries = [[NSMutableArray alloc] init];
    return self;
}

- (void)dealloc {
    [_entries release];
    [_primary release];
    [super dealloc];
}

- (ABMultiValueEntry*)entryAtIndex:(NSUInteger)index {
    if (index >= [_entries count])
        [NSException raise:NSRangeException
                    format:@"There is no entry %lu: the list has %lu", (unsigned long)index,
                           (unsigned long)[_entries count]];
    return [_entries objectAtIndex:index];
}

- (void)takeEntriesOf:(ABMultiValue*)other {
    [_entries setArray:other->_entries];
    [self choosePrimary:other->_primary];
}

- (NSUInteger)count {
    return [_entries count];
}

- (id)valueAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index]->_value;
}

- (NSString*)labelAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index]->_label;
}

- (NSString*)identifierAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index]->_identifier;
}

- (NSUInteger)indexForIdentifier:(NSString*)identifier {
    for (NSUInteger i = 0, count = [_entries count]; identifier != nil && i < count; ++i)
        if ([[self identifierAtIndex:i] isEqualToString:identifier])
            return i;
    return NSNotFound;
}

- (NSString*)primaryIdentifier {
    if (_primary != nil)
        return _primary;
    return [_entries count] == 0 ? nil : [self identifierAtIndex:0];
}

- (ABPropertyType)propertyType {
    const auto value = valueFrom(self);
    return value ? typeOf(*value) : kABErrorInProperty;
}

- (id)valueForIdentifier:(NSString*)identifier {
    const NSUInteger index = [self indexForIdentifier:identifier];
    return index == NSNotFound ? nil : [self valueAtIndex:index];
}

- (NSString*)labelForIdentifier:(NSString*)identifier {
    const NSUInteger index = [self indexForIdentifier:identifier];
    return index == NSNotFound ? nil : [self labelAtIndex:index];
}

- (id)copyWithZone:(NSZone*)zone {
    if ([self isMemberOfClass:[ABMultiValue class]])
        return [self retain];
    ABMultiValue* copy = [[ABMultiValue allocWithZone:zone] init];
    [copy takeEntriesOf:self];
    return copy;
}

- (id)mutableCopyWithZone:(NSZone*)zone {
    ABMutableMultiValue* copy = [[ABMutableMultiValue allocWithZone:zone] init];
    [copy takeEntriesOf:self];
    return copy;
}

// Walks the values, in order.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id[])buffer
                                    count:(NSUInteger)length {
    state->itemsPtr = buffer;
    state->mutationsPtr = &_mutations;
    NSUInteger given = 0;
    for (; given < length && state->state < [_entries count]; ++given, ++state->state)
        buffer[given] = [self valueAtIndex:state->state];
    return given;
}

- (BOOL)isEqual:(id)other {
    if (![other isKindOfClass:[ABMultiValue class]])
        return NO;
    ABMultiValue* list = other;
    return [_entries isEqual:list->_entries] &&
           ([self count] == 0 || [[self primaryIdentifier] isEqual:[list primaryIdentifier]]);
}

- (NSUInteger)hash {
    return [_entries count];
}

- (NSString*)description {
    return [_entries description];
}

@end

@implementation ABMultiValue (Internal)

- (void)appendValue:(id)value label:(NSString*)label identifier:(NSString*)identifier {
    [_entries addObject:[[[ABMultiValueEntry alloc] initWithValue:value label:label
                                                       identifier:identifier] autorelease]];
}

- (void)choosePrimary:(NSString*)identifier {
    if (identifier == _primary)
        return;
    [_primary release];
    _primary = [identifier copy];
}

- (NSString*)chosenPrimary {
    return _primary;
}

@end

@implementation ABMutableMultiValue

- (NSString*)addValue:(id)value withLabel:(NSString*)label {
    return [self insertValue:value withLabel:label atIndex:[_entries count]];
}

- (NSString*)insertValue:(id)value withLabel:(NSString*)label atIndex:(NSUInteger)index {
    if (value == nil || label == nil)
        return nil;
    if (index > [_entries count])
        [self identifierAtIndex:index]; // raises
    NSString* identifier = stringFrom(newUuid());
    [_entries insertObject:[[[ABMultiValueEntry alloc] initWithValue:value label:label
                                                          identifier:identifier] autorelease]
                   atIndex:index];
    ++_mutations;
    return identifier;
}

- (BOOL)removeValueAndLabelAtIndex:(NSUInteger)index {
    if ([[self identifierAtIndex:index] isEqual:_primary])
        [self choosePrimary:nil];
    [_entries removeObjectAtIndex:index];
    ++_mutations;
    return YES;
}

- (void)replaceEntryAtIndex:(NSUInteger)index withValue:(id)value label:(NSString*)label {
    ABMultiValueEntry* entry = [[ABMultiValueEntry alloc] initWithValue:value
                                                                  label:label
                                                             identifier:[self identifierAtIndex:index]];
    [_entries replaceObjectAtIndex:index withObject:entry];
    [entry release];
    ++_mutations;
}

- (BOOL)replaceValueAtIndex:(NSUInteger)index withValue:(id)value {
    NSString* label = [self labelAtIndex:index];
    if (value == nil)
        return NO;
    [self replaceEntryAtIndex:index withValue:value label:label];
    return YES;
}

- (BOOL)replaceLabelAtIndex:(NSUInteger)index withLabel:(NSString*)label {
    id value = [self valueAtIndex:index];
    if (label == nil)
        return NO;
    [self replaceEntryAtIndex:index withValue:value label:label];
    return YES;
}

- (BOOL)setPrimaryIdentifier:(NSString*)identifier {
    if ([self indexForIdentifier:identifier] == NSNotFound)
        return NO;
    [self choosePrimary:identifier];
    return YES;
}

@end
