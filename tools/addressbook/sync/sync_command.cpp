// The command `sync`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/chosen_books.h"
#include "tools/addressbook/sync/sync_round.h"
#include "tools/addressbook/sync/watch.h"
#include "tools/addressbook/terminal.h"

#include <algorithm>
#include <iostream>

namespace addressbook::tool {
namespace {

// Brings one book in step, asks what must be asked, and tells what became of it.
Outcome syncOnce(Store& store, Server& server, const SyncCollection& book, const std::string& name,
                 const Options& options) {
    const bool dryRun = options.sync.dryRun;
    Outcome outcome = syncBook(store, server, book, name, dryRun, options.sync.force);
    if (outcome.isHeldBack && !dryRun && canAsk() &&
        confirm(escaped(name + ": " + outcome.trouble) + ". Go on?")) {
        outcome = syncBook(store, server, book, name, dryRun, true);
    }
    if (outcome.trouble.empty()) {
        tellRefused(outcome.summary, name);
        std::cerr << escaped(name) << ": " << describe(outcome.summary)
                  << (dryRun ? " (dry run, nothing changed)\n" : "\n");
    } else {
        complain(escaped(name + ": " + outcome.trouble) + (outcome.isHeldBack ? "; --force goes on" : ""));
    }
    return outcome;
}

} // namespace

int runSync(const Options& options) {
    noteSignals();
    if (options.sync.watch != 0) {
        return keepInStep(options);
    }
    Store store = open(options, options.sync.dryRun ? Store::Access::readOnly : Store::Access::readWrite);
    if (store.readOnly() && !options.sync.dryRun) {
        throw readOnlyError(store.file());
    }
    int status = kDone;
    std::size_t conflicts = 0;
    for (const AccountBooks& chosen : chosenBooks(store, options.sync.accounts)) {
        Server server(chosen.account);
        for (const NamedBook& book : chosen.books) {
            const Outcome outcome = syncOnce(store, server, book.book, book.name, options);
            status = std::max(status, outcome.status);
            conflicts += outcome.summary.conflicts;
            if (outcome.error && carddav::concernsServer(*outcome.error)) {
                break; // the account's other books would fail alike
            }
        }
    }
    if (conflicts > 0 && !options.sync.dryRun) {
        std::cerr << "addressbook conflicts shows the values that had to yield\n";
    }
    return status;
}

} // namespace addressbook::tool
