#pragma once

// The database's tables, their version, and the steps from each version to the next.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <functional>
#include <span>

namespace addressbook {

// The number in the file's header (PRAGMA application_id) that says it is an address book.
inline constexpr std::int64_t kApplicationId = 0x41424B31; // "ABK1"

// The version that this program writes (PRAGMA user_version). docs/storage.md tells what each version
// brought.
inline constexpr std::size_t kSchemaVersion = 5;

// One step: brings a database of the version before (the first step: an empty one) to the next.
using Migration = std::function<void(sql::Connection&)>;

// Returns all steps, kSchemaVersion in number.
std::span<const Migration> migrations();

// Returns the version of a database; 0 for an empty one. Throws StoreError when the file is no address book.
int schemaVersion(sql::Connection& connection);

// Runs the steps that the database lacks, all in one transaction. Throws StoreError, notably when the
// database is newer than the steps.
void migrate(sql::Connection& connection, std::span<const Migration> steps = migrations());

} // namespace addressbook
