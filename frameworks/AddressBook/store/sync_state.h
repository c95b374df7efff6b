#pragma once

// What a book that is kept in step with servers notes beside its records: accounts, address books on servers, which
// card there is which record here, and values that had to yield. It is written in the transaction of the records that
// it is about, so that a run that dies has done a part of its work whole, or not at all.

#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace addressbook {

// How a password is got; itself it is never in the book. The numbers are stored.
enum class PasswordSource : int {
    none = 0,    // the server asks for none
    command = 1, // the first line that a command prints
    file = 2,    // the first line of a file
    keyring = 3, // the desktop's keyring
    prompt = 4,  // asked for each time
};

// A user of a server.
struct SyncAccount {
    std::int64_t id = 0; // 0: a new one
    std::string url; // as its user gave it: the address of a server or of what is on it, or a mail address
    std::string user;
    std::string name; // by which users call it; no two have the same
    PasswordSource source = PasswordSource::none;
    std::string password; // the command, or the path of the file; never the password
    std::string caFile =
        {}; // PEM: authorities that are trusted for this server besides the system's; empty: none
    bool allowHttp = false; // without encryption, to other machines than this one
    bool operator==(const SyncAccount&) const = default;
};

// An address book of an account.
struct SyncCollection {
    std::int64_t id = 0;      // 0: a new one
    std::int64_t account = 0; // 0: the account that is new in the same ChangeSet
    std::string url;          // with the path in normal form
    std::string name;         // to show
    std::string state;        // of the listing, as Collection::changes() gave it; empty: nothing is known
    // The number in the change log up to which local changes are on the server. Negative: not known, as the book was
    // repaired; records that have links and are missing were lost, not deleted.
    std::int64_t change = 0;
    bool isDefault = false; // new records belong to it; at most one of a book is
    bool operator==(const SyncCollection&) const = default;
};

// Which card of a collection is which record.
struct SyncLink {
    std::int64_t collection = 0;
    std::string href; // its key within the collection
    std::string uid;  // of the record
    std::string etag; // of the agreed text; empty: not known
    std::string text; // the card as both sides last agreed; empty: the server has none yet
    // The record left the collection: the card is to be deleted there. A record belongs to the collection of its only
    // other link, if there is one.
    bool leaves = false;
    bool operator==(const SyncLink&) const = default;
};

// A value that had to yield, as users see it.
struct SyncConflict {
    std::int64_t id = 0; // 0: a new one
    std::string uid;     // of the record
    std::string property;
    std::string label; // of an entry of a list
    Value value;
    Date time;
    bool remote = false; // whose value it is: the server's
    bool operator==(const SyncConflict&) const = default;
};

// The part of a save that is about this. Removing an account removes its collections, and that of a collection its
// links; the records stay. A save is refused when it gives a name, a URL or a record's membership twice.
struct SyncChanges {
    std::vector<std::int64_t> removedAccounts, removedCollections, removedConflicts; // ids
    std::vector<std::pair<std::int64_t, std::string>> removedLinks;                  // collection and href
    std::vector<SyncAccount> accounts;       // new, or all of what is changed
    std::vector<SyncCollection> collections; // new, or all of what is changed
    std::vector<SyncLink> links;             // put in the place of those of the same collection and href
    std::vector<SyncConflict> conflicts;     // new
    bool empty() const;
};

} // namespace addressbook
