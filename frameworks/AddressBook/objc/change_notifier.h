#pragma once

// The address book's notifications.

#include "frameworks/AddressBook/model/book.h"

#import <AddressBook/AddressBook.h>

namespace addressbook {

// Returns the user info of a notification: the unique ids under their keys, keys without ids left out.
NSDictionary* changeInfo(const std::vector<std::string>& inserted, const std::vector<std::string>& updated,
                         const std::vector<std::string>& deleted);

// Starts a thread that watches for saves of other processes and posts
// kABDatabaseChangedExternallyNotification once for each of those after the newest that [book] knows; before
// that, every book of this process is invalidated. There is one such thread at a time; [sender] must live
// until stopNotifying().
void startNotifying(ABAddressBook* sender, const Book& book);

// Stops the thread; nothing is posted any more when it returns. Called by itself at the end of the process.
void stopNotifying();

} // namespace addressbook
