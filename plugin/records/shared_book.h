#pragma once

#import <AddressBook/AddressBook.h>

// The address book that all functions work on. Raises an NSException when it cannot be opened, so that such a
// call fails rather than works on nothing.
[[nodiscard]] ABAddressBook* sharedBook();
