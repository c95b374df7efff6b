#pragma once

// Which servers get which passwords, as this user said with `account add` on this machine. It is kept outside of every
// address book, so that a book that somebody else filled neither has a command run nor a password sent to a server of
// his choice.

#include "frameworks/AddressBook/store/sync_state.h"

#include <string>

namespace addressbook::tool {

// Notes that the server at [url] gets the password of [account], from where the account has it. Throws Failure when
// that cannot be written.
void permit(const SyncAccount& account, const std::string& url);

// Throws Failure when permit() has not been told of this server and this account, with the same place of the password.
// Who has no user has no password, and needs no permission.
void requirePermission(const SyncAccount& account, const std::string& url);

} // namespace addressbook::tool
