#pragma once

// Passwords in the desktop's keyring, by libsecret, which is loaded when it is first needed. An item has the attributes
// "server" (as "dav.example.com") and "user", so that `secret-tool` can put one there as well.

#include "frameworks/AddressBook/carddav/secret.h"
#include "frameworks/AddressBook/store/sync_state.h"

#include <optional>

namespace addressbook::tool {

// Returns an account's password; nothing when the keyring has none. Throws Failure when there is no keyring, or it
// stays locked.
std::optional<carddav::Secret> findInKeyring(const SyncAccount& account);

// Puts an account's password into the keyring, in the place of the one that is there. Throws Failure.
void putIntoKeyring(const SyncAccount& account, const carddav::Secret& password);

// Takes an account's password out of the keyring, if it is there. Throws Failure.
void removeFromKeyring(const SyncAccount& account);

} // namespace addressbook::tool
