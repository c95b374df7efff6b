#import <AddressBook/ABMultiValue.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/list_entries.h"
#include "frameworks/AddressBook/objc/multi_value.h"
#include "frameworks/AddressBook/objc/record.h"
#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>

using namespace addressbook;

namespace {

// Raise NSInvalidArgumentException when an entry's value or label is nil.
void requireEntryValue(id value) {
    requireArgument(value, @"An entry of a list needs a value");
}
void requireEntryLabel(NSString* label) {
    requireArgument(label, @"An entry of a list needs a label");
}

} // namespace

@interface ABMultiValue (Entries)
- (const ListEntries&)list;
- (const ListEntry&)entryAtIndex:(NSUInteger)index;
@end

@implementation ABMultiValue

- (id)init {
    return [self initWithEntries:new ListEntries];
}

- (void)dealloc {
    const ListEntriesPtr released(static_cast<ListEntries*>(_list), false);
    [super dealloc];
}

- (const ListEntries&)list {
    return *static_cast<ListEntries*>(_list);
}

- (const ListEntry&)entryAtIndex:(NSUInteger)index {
    const auto& entries = static_cast<ListEntries*>(_list)->entries;
    if (index >= entries.size()) {
        [NSException raise:NSRangeException
                    format:@"There is no entry %lu: the list has %lu", (unsigned long)index,
                           (unsigned long)entries.size()];
    }
    return entries[index];
}

- (NSUInteger)count {
    return static_cast<ListEntries*>(_list)->entries.size();
}

- (id)valueAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index].value();
}

- (NSString*)labelAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index].label();
}

- (NSString*)identifierAtIndex:(NSUInteger)index {
    return [self entryAtIndex:index].identifier();
}

- (NSUInteger)indexForIdentifier:(NSString*)identifier {
    const auto& entries = [self list].entries;
    if (identifier == nil || entries.empty()) {
        return NSNotFound;
    }
    const ListEntry::Sought sought(identifier);
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const ListEntry& entry) { return entry.isNamed(sought); });
    if (found == entries.end()) {
        return NSNotFound;
    }
    return static_cast<NSUInteger>(found - entries.begin());
}

- (NSString*)primaryIdentifier {
    if (id chosen = [self chosenPrimary]) {
        return chosen;
    }
    return [self count] == 0 ? nil : [self identifierAtIndex:0];
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
    if ([self isMemberOfClass:[ABMultiValue class]]) {
        return [self retain];
    }
    return [[ABMultiValue allocWithZone:zone] initWithEntries:static_cast<ListEntries*>(_list)];
}

- (id)mutableCopyWithZone:(NSZone*)zone {
    return [[ABMutableMultiValue allocWithZone:zone] initWithEntries:static_cast<ListEntries*>(_list)];
}

// NSFastEnumeration over the values, in order.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id[])buffer
                                    count:(NSUInteger)length {
    state->itemsPtr = buffer;
    state->mutationsPtr = &_mutations;
    NSUInteger given = 0;
    for (; given < length && state->state < [self count]; ++given, ++state->state) {
        buffer[given] = [self valueAtIndex:state->state];
    }
    return given;
}

- (BOOL)isEqual:(id)other {
    if (![other isKindOfClass:[ABMultiValue class]]) {
        return NO;
    }
    ABMultiValue* list = other;
    const NSUInteger count = [self count];
    if ([list count] != count) {
        return NO;
    }
    for (NSUInteger i = 0; i < count; ++i) {
        if (![[self identifierAtIndex:i] isEqual:[list identifierAtIndex:i]] ||
            ![[self labelAtIndex:i] isEqual:[list labelAtIndex:i]] ||
            ![[self valueAtIndex:i] isEqual:[list valueAtIndex:i]]) {
            return NO;
        }
    }
    return count == 0 || [[self primaryIdentifier] isEqual:[list primaryIdentifier]];
}

- (NSUInteger)hash {
    return [self count];
}

- (NSString*)description {
    NSMutableArray* entries = [NSMutableArray array];
    for (NSUInteger i = 0, count = [self count]; i < count; ++i) {
        [entries addObject:[NSString stringWithFormat:@"%@ %@ (%@)", [self labelAtIndex:i],
                                                      [self valueAtIndex:i], [self identifierAtIndex:i]]];
    }
    return [entries description];
}

@end

@implementation ABMultiValue (Internal)

- (id)initWithEntries:(ListEntriesPtr)entries {
    if ((self = [super init]) != nil) {
        _list = entries.detach();
    }
    return self;
}

- (NSString*)chosenPrimary {
    return [self list].primary.get();
}

@end

@implementation ABMutableMultiValue

// Returns the entries to be changed: a copy of its own when another list shares them.
- (ListEntries&)ownList {
    auto* shared = static_cast<ListEntries*>(_list);
    if (shared->use_count() > 1) {
        const ListEntriesPtr released(shared, false);
        _list = ListEntriesPtr(new ListEntries(*shared)).detach();
    }
    return *static_cast<ListEntries*>(_list);
}

- (NSString*)addValue:(id)value withLabel:(NSString*)label {
    return [self insertValue:value withLabel:label atIndex:[self count]];
}

- (NSString*)insertValue:(id)value withLabel:(NSString*)label atIndex:(NSUInteger)index {
    requireEntryValue(value);
    requireEntryLabel(label);
    auto& entries = [self ownList].entries;
    if (index > entries.size()) {
        [self entryAtIndex:index]; // raises
    }
    NSString* identifier = stringFrom(newUuid());
    entries.emplace(entries.begin() + static_cast<std::ptrdiff_t>(index), value, label, identifier);
    ++_mutations;
    return identifier;
}

- (BOOL)removeValueAndLabelAtIndex:(NSUInteger)index {
    ListEntries& list = [self ownList];
    if ([[self identifierAtIndex:index] isEqual:list.primary.get()]) {
        list.primary = Retained();
    }
    list.entries.erase(list.entries.begin() + static_cast<std::ptrdiff_t>(index));
    ++_mutations;
    return YES;
}

- (void)replaceEntryAtIndex:(NSUInteger)index withValue:(id)value label:(NSString*)label {
    [self ownList].entries[index] = ListEntry(value, label, [self identifierAtIndex:index]);
    ++_mutations;
}

- (BOOL)replaceValueAtIndex:(NSUInteger)index withValue:(id)value {
    requireEntryValue(value);
    NSString* label = [self labelAtIndex:index];
    [self replaceEntryAtIndex:index withValue:value label:label];
    return YES;
}

- (BOOL)replaceLabelAtIndex:(NSUInteger)index withLabel:(NSString*)label {
    requireEntryLabel(label);
    id value = [self valueAtIndex:index];
    [self replaceEntryAtIndex:index withValue:value label:label];
    return YES;
}

- (BOOL)setPrimaryIdentifier:(NSString*)identifier {
    requireArgument(identifier, @"A list's primary entry needs an identifier");
    if ([self indexForIdentifier:identifier] == NSNotFound) {
        return NO;
    }
    [self ownList].primary = copied(identifier);
    return YES;
}

@end
