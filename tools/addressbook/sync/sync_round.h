#pragma once

// One time of bringing an address book in step with its server, and what is told about it.

#include "tools/addressbook/sync/server.h"

#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/sync/engine.h"

#include <optional>
#include <string>

namespace addressbook::tool {

// What became of it.
struct Outcome {
    int status = 0;                          // an ExitCode
    std::string trouble;                     // what ended it, without a full stop; empty: nothing
    std::optional<carddav::ErrorKind> error; // of the trouble, when it is the server's
    bool isHeldBack = false;                 // by MassDeletion
    sync::Summary summary;
};

// Brings [book] in step. Shows on a terminal how far it is, under the name [name]. Throws StoreError and Interrupted.
Outcome syncBook(Store& store, Server& server, const SyncCollection& book, const std::string& name,
                 bool dryRun, bool force);

// Returns what was done as "3 fetched, 1 sent"; "nothing new" when that was nothing.
std::string describe(const sync::Summary& summary);

// Prints the cards and records that one side did not take.
void tellRefused(const sync::Summary& summary, const std::string& name);

} // namespace addressbook::tool
