#pragma once

// Two programs that keep one address book in step at once would send and fetch everything twice.

#include "frameworks/AddressBook/store/store.h"

namespace addressbook::sync {

// Waits until no other cycle of the address book runs, in this process or another, and keeps others waiting while it
// lives. It locks the folder of the book (flock), so that nothing is left when a process dies. Where the file system has
// no such locks it does nothing.
class CycleLock {
  public:
    explicit CycleLock(const Store& store);
    ~CycleLock();
    CycleLock(const CycleLock&) = delete;
    CycleLock& operator=(const CycleLock&) = delete;

  private:
    int folder_ = -1;
};

} // namespace addressbook::sync
