#pragma once

// Deferred indexing. The index entries of one changed property are spread over many pages: writing them costs
// a save ten pages and more. A small save only records, in its row of the change log, what the indexes still
// hold of the values that it replaced. One save in kSavesInBacklog, and each large one, brings the indexes up
// to date. Until then, searches check the properties in the backlog record by record.

#include "frameworks/AddressBook/store/backlog_codec.h"
#include "frameworks/AddressBook/store/store.h"

#include <cstdint>

namespace addressbook {

class IndexWriter;

// The most saves whose index updates may be pending.
inline constexpr std::int64_t kSavesInBacklog = 64;

// Returns the backlog that the database holds. Throws StoreError.
Backlog readBacklog(Store::Impl& impl);

// Replaces what the indexes hold of the properties in [backlog] by what the records hold. Requires a write
// transaction.
void applyBacklog(Store::Impl& impl, IndexWriter& index, const Backlog& backlog);

// Brings the indexes up to date with the database's backlog and, after it, [newer], and empties the backlog.
// Requires a write transaction.
void flushBacklog(Store::Impl& impl, IndexWriter& index, Backlog newer);

} // namespace addressbook
