#pragma once

// What the links of a collection mean that are no cards there. A server's hrefs are paths and begin with a slash; those
// of these do not.

#include "frameworks/AddressBook/store/sync_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook::sync {

// Returns the link by which a record belongs to a collection in which it has no card yet: the next cycle creates one,
// with the record's UID. To move a record, its link in the collection that it leaves is saved with SyncLink::leaves in
// the same ChangeSet. That changes the record too, be it without a value: by the change log cycles learn of it.
SyncLink unsentLink(std::int64_t collection, const std::string& uid);

// Whether the link is of a card that is on the server, or will be, and of its record.
bool isOfRecord(const SyncLink& link);

// Returns the href of the link by which a group stands for the people of a collection who have a category, and the name
// of the category by which it was agreed; nothing for any other href.
std::string categoryHref(const std::string& name);
std::optional<std::string> categoryOf(std::string_view href);

// Returns what stands for the record's unique id in the link of a card that is no record here, so that it is not fetched
// again before it changes: one that cannot be read, or one whose record [uid] belongs to another card already.
std::string unreadableId(std::string_view href);
std::string elsewhereId(std::string_view uid, std::int64_t collection);

} // namespace addressbook::sync
