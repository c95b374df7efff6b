#pragma once

// The part of a save that is about keeping in step with servers.

#include "frameworks/AddressBook/store/store.h"

namespace addressbook {

// Writes [changes] in the open transaction, and adds the ids of what is new to [result]. Returns whether anything was
// written. Throws StoreError.
bool saveSyncChanges(Store::Impl& impl, const SyncChanges& changes, SaveResult& result);

} // namespace addressbook
