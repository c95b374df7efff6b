#pragma once

// The database's tables, their version, and the steps from each version to the next.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <functional>
#include <span>

namespace addressbook {

// Says in the file's header that it is an address book.
inline constexpr std::int64_t kApplicationId = 0x41424B31; // "ABK1"

// One step: brings a database of the version before (the first step: an empty one) to the next.
using Migration = std::function<void(sql::Connection&)>;

// All steps; their number is the current version.
std::span<const Migration> migrations();

// The version of a database; 0 for an empty one. Throws StoreError when the file is no address book.
int schemaVersion(sql::Connection& connection);

// Runs the steps that the database lacks, all in one transaction. Throws StoreError, notably when the
// database is newer than the steps.
void migrate(sql::Connection& connection, std::span<const Migration> steps = migrations());

} // namespace addressbook
