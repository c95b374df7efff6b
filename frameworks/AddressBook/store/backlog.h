#pragma once

// Deferred indexing. The index entries of one changed property are spread over many pages: writing them costs
// a save ten pages and more. A small save only records, in its row of the change log, what the indexes still
// hold of the values that it replaced. One save in kSavesInBacklog, and each large one, brings the indexes up
// to date. Until then, searches check the properties in the backlog record by record.

#include "frameworks/AddressBook/store/store.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

class IndexWriter;

// The most saves whose index updates may be pending.
inline constexpr std::int64_t kSavesInBacklog = 64;

// One property of one record.
struct PropertyRef {
    std::int64_t property = 0;
    RowId record = 0;
    auto operator<=>(const PropertyRef&) const = default;
};

// The properties that were changed since the indexes were last up to date, with what the indexes still hold
// of them: an encoded value (encodeValue), empty when they hold nothing.
using Backlog = std::map<PropertyRef, std::string>;

// Returns the bytes of a backlog, as a row of the change log keeps it.
std::string encodeBacklog(const Backlog& backlog);
// Adds such bytes to [backlog], oldest row first: of several changes of a property the first one says what
// the indexes hold, so that a property that is there already stays. Throws DamagedRecord.
void decodeBacklog(std::string_view bytes, Backlog& backlog);

// Returns the backlog that the database holds. Throws StoreError.
Backlog readBacklog(Store::Impl& impl);

// Replaces what the indexes hold of the properties in [backlog] by what the records hold. Requires a write
// transaction.
void applyBacklog(Store::Impl& impl, IndexWriter& index, const Backlog& backlog);

// Brings the indexes up to date with the database's backlog and, after it, [newer], and empties the backlog.
// Requires a write transaction.
void flushBacklog(Store::Impl& impl, IndexWriter& index, Backlog newer);

} // namespace addressbook
