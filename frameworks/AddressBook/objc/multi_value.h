#pragma once

// What the framework itself does with multi-values beyond the public interface.

#import <AddressBook/ABMultiValue.h>

@interface ABMultiValue (Internal)

// Puts an entry with a known identifier at the end; only while nobody else holds the list.
- (void)appendValue:(id)value label:(NSString*)label identifier:(NSString*)identifier;
- (void)choosePrimary:(NSString*)identifier;

// The primary identifier that was chosen; nil when the first entry is primary because none was.
- (NSString*)chosenPrimary;

@end
