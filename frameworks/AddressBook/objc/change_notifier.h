#pragma once

// The address book's notifications.

#include "frameworks/AddressBook/model/book.h"

#import <AddressBook/AddressBook.h>

namespace addressbook {

// The user info of a notification: the unique ids under their keys, keys without ids left out.
NSDictionary* changeInfo(const std::vector<std::string>& inserted, const std::vector<std::string>& updated,
                         const std::vector<std::string>& deleted);

// Begins to tell of what other processes save: kABDatabaseChangedExternallyNotification is posted from a
// thread of the framework's own, once for each of their saves after the newest that [book] knows. Every book
// of this process is stirred before that. One at a time; [sender] must live until stopAnnouncing().
void startAnnouncing(ABAddressBook* sender, const Book& book);

// Ends that; nothing is posted any more when it returns. At the end of the process it happens by itself.
void stopAnnouncing();

} // namespace addressbook
