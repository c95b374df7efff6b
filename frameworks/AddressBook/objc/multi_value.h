#pragma once

// What the framework itself does with multi-values beyond the public interface.

#include "frameworks/AddressBook/objc/list_entries.h"

#import <AddressBook/ABMultiValue.h>

@interface ABMultiValue (Internal)

- (id)initWithEntries:(std::unique_ptr<addressbook::ListEntries>)entries;

// The primary identifier that was chosen; nil when the first entry is primary because none was.
- (NSString*)chosenPrimary;

@end
