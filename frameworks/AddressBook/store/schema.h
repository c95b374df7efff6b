#pragma once

// The database's tables, their version, and the steps from each version to the next.

#include "frameworks/AddressBook/store/sql/sql.h"

#include <functional>
#include <span>

namespace addressbook {

// The number by which SQLite's file header (PRAGMA application_id) identifies an address book.
inline constexpr std::int64_t kApplicationId = 0x41424B31; // "ABK1"

// The schema version that this program writes (PRAGMA user_version). docs/storage.md says what each version
// added.
inline constexpr std::size_t kSchemaVersion = 8;

// One step: upgrades a database from a version to the next one; the first step makes the tables of version 1
// in an empty database.
using Migration = std::function<void(sql::Connection&)>;

// Returns all steps, in order; there are kSchemaVersion of them.
std::span<const Migration> migrations();

// Returns the version of a database; 0 for an empty one. Throws StoreError when the file is no address book.
int schemaVersion(sql::Connection& connection);

// Upgrades the database to the newest version: runs the steps that it lacks, all in one transaction. Throws
// StoreError, notably when the database is of a newer version than there are steps.
void migrate(sql::Connection& connection, std::span<const Migration> steps = migrations());

} // namespace addressbook
