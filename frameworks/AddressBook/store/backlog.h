#pragma once

// What small saves leave to do. The entries of one changed property lie all over the search indexes: writing
// them costs a save ten pages and more. A small save enters in the change log what the indexes hold of the
// values that it replaced; one save in kSavesInBacklog, and each large one, brings the indexes up to date.
// Until then searches look at those few values themselves.

#include "frameworks/AddressBook/store/store.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

class IndexWriter;

// At most so many saves wait.
inline constexpr std::int64_t kSavesInBacklog = 64;

// One property of one record.
struct PropertyRef {
    std::int64_t property = 0;
    RowId record = 0;
    auto operator<=>(const PropertyRef&) const = default;
};

// What the indexes still hold of properties that were changed since: encoded values, empty for none.
using Backlog = std::map<PropertyRef, std::string>;

// Returns a backlog as the change log keeps it.
std::string encodeBacklog(const Backlog& backlog);
// Adds to [backlog] what it does not know yet: the first change of a property says what the indexes hold.
// Throws DamagedRecord.
void decodeBacklog(std::string_view bytes, Backlog& backlog);

// Returns what waits in the database. Throws StoreError.
Backlog readBacklog(Store::Impl& impl);

// Brings the indexes up to date: what they hold by [backlog] becomes what the records hold. Requires a write
// transaction.
void applyBacklog(Store::Impl& impl, IndexWriter& index, const Backlog& backlog);

// Brings the indexes up to date with all that waits in the database and, after that, [newer]; then nothing
// waits any more. Requires a write transaction.
void flushBacklog(Store::Impl& impl, IndexWriter& index, Backlog newer);

} // namespace addressbook
