#pragma once

// Records as cards, and cards as changes of records.

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::sync {

// Returns a record as a card; nothing when there is none. A group names its members as their own cards name themselves,
// and those that are not in the address book as its card named them.
std::optional<vcard::Card> cardOf(const Store& store, std::string_view uid);

// Adds to [changes] what makes the record [uid] say what [card] does: a new record when there is none. A group's
// members that are neither in the address book nor inserted by [changes] are kept among its unknown lines; see
// joinWaiting(). What no card holds stays as it is. Nothing is added when nothing differs.
void setRecord(const Store& store, const std::string& uid, const vcard::Card& card, ChangeSet& changes);

// Adds to [changes] what has the records that it inserts join the groups in the address book that wait for them.
void joinWaiting(const Store& store, ChangeSet& changes);

} // namespace addressbook::sync
