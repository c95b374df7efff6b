#pragma once

// Passwords of accounts, from where each account has its own.

#include "frameworks/AddressBook/carddav/secret.h"
#include "frameworks/AddressBook/store/sync_state.h"

namespace addressbook::tool {

// Returns the password of an account, by its source. Throws Failure when it cannot be had: a command fails, a file may
// be read by others than its owner, the keyring has none, there is nobody to ask.
carddav::Secret readPassword(const SyncAccount& account);

// Asks for the password of an account on the terminal. Throws Failure when there is none.
carddav::Secret askForPassword(const SyncAccount& account);

} // namespace addressbook::tool
