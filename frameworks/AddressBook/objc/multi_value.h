#pragma once

// The framework's own additions to the public interface of multi-values.

#include "frameworks/AddressBook/objc/list_entries.h"

#import <AddressBook/ABMultiValue.h>

@interface ABMultiValue (Internal)

- (id)initWithEntries:(addressbook::ListEntriesPtr)entries;

// Returns the primary identifier that was set; nil when none was, so that the first entry is primary.
- (NSString*)chosenPrimary;

@end
