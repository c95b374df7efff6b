#pragma once

#import <AddressBook/AddressBook.h>

namespace koru {

// Returns the address book that all functions work on. Raises an NSException when it cannot be opened, which
// fails the call.
[[nodiscard]] ABAddressBook* sharedBook();

// Returns the record with the id; nil when the address book has none, and for nil, for which the framework's
// own look-up would raise.
[[nodiscard]] ABRecord* recordWithId(NSString* uniqueId);

} // namespace koru
