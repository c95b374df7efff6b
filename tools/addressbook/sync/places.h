#pragma once

// Where records belong: the address books on servers, as users name them. "ACCOUNT/BOOK" is one, "ACCOUNT" all of an
// account, "local" what is on this machine alone.

#include "frameworks/AddressBook/store/store.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

// The name of what belongs to no account.
inline constexpr std::string_view kLocal = "local";

// The accounts and address books of a store, as they were when this was made.
class Places {
  public:
    explicit Places(const Store& store);

    const std::vector<SyncAccount>& accounts() const { return accounts_; }
    // Returns the address books of an account, in the order in which they were added.
    std::vector<SyncCollection> booksOf(std::int64_t account) const;

    // Returns the account of a name. Throws Failure, which lists those that there are.
    const SyncAccount& account(std::string_view name) const;
    // Returns the address books that "ACCOUNT" or "ACCOUNT/BOOK" names. Throws Failure.
    std::vector<SyncCollection> books(std::string_view name) const;
    // Returns the one address book that is named so; of an account with several its default one. Throws Failure.
    SyncCollection book(std::string_view name) const;

    // Returns the address book of an address; null when there is none.
    const SyncCollection* bookAt(std::string_view url) const;

    // Returns "ACCOUNT/BOOK" of an address book, by its id; "local" for an unknown one.
    std::string nameOf(std::int64_t book) const;
    // Returns what nameOf() says of the address book that a record belongs to, or "local".
    std::string placeOf(const Store& store, std::string_view uid) const;
    // Returns all names: of accounts and of their address books.
    std::vector<std::string> names() const;

  private:
    std::vector<std::string> namesOf(const std::vector<SyncCollection>& books) const;

    std::vector<SyncAccount> accounts_;
    std::vector<SyncCollection> books_;
};

// Returns the host of the server, or the mail domain, by which an account was added.
std::string hostOf(const SyncAccount& account);

// Returns the rows of the people and groups that belong to an address book.
std::set<RowId> rowsOf(const Store& store, std::int64_t book);

// Returns the rows of the people and groups that belong to what is named so, "local" included. Throws Failure.
std::set<RowId> rowsIn(const Store& store, std::string_view place);

} // namespace addressbook::tool
