#pragma once

#import <AddressBook/AddressBook.h>
#include <span>

namespace koru {

// A field of an address: the prefix of the words that name it, and the framework's key.
struct AddressKey {
    NSString* prefix; // compared with its letter case
    NSString* const* key;
};

// Returns the fields in the order in which they are tried.
[[nodiscard]] std::span<const AddressKey> addressKeys();

} // namespace koru

// Returns the framework's key for a word when reading: the first field whose prefix begins the word, or whose
// key is the word in any letter case. "Country Code" names the country, since "Country" is tried before it,
// on purpose. nil when nothing fits, and for nil. Never fails the call.
[[nodiscard]] NSString* toKeyString(NSString* word);
