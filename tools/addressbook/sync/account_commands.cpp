// The commands `account list`, `account remove` and `account default`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/json.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/keyring.h"
#include "tools/addressbook/sync/places.h"
#include "tools/addressbook/terminal.h"

#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace addressbook::tool {
namespace {

// Where passwords come from, by the number of PasswordSource.
constexpr std::array kSources = {"none", "command", "file", "keyring", "prompt"};

const char* sourceOf(const SyncAccount& account) {
    const auto number = static_cast<std::size_t>(account.source);
    return number < kSources.size() ? kSources[number] : "unknown";
}

Json jsonOf(const Store& store, const Places& places, const SyncAccount& account) {
    Json books = Json::array();
    for (const SyncCollection& book : places.booksOf(account.id)) {
        books.push_back({{"name", book.name},
                         {"url", book.url},
                         {"records", rowsOf(store, book.id).size()},
                         {"default", book.isDefault}});
    }
    Json object{{"name", account.name},
                {"address", account.url},
                {"user", account.user},
                {"password", sourceOf(account)},
                {"books", std::move(books)}};
    if (!account.caFile.empty()) {
        object["caFile"] = account.caFile;
    }
    if (account.allowHttp) {
        object["allowHttp"] = true;
    }
    return object;
}

void save(const Options& options, const ChangeSet& changes) {
    Store store = open(options, Store::Access::readWrite);
    if (store.readOnly()) {
        throw readOnlyError(store.file());
    }
    store.save(changes);
}

// Takes the password of an account that is gone out of the keyring, unless another account has the same.
void forgetPassword(const Places& places, const SyncAccount& account) {
    const bool isShared =
        std::any_of(places.accounts().begin(), places.accounts().end(), [&](const SyncAccount& other) {
            return other.id != account.id && other.user == account.user && hostOf(other) == hostOf(account);
        });
    if (account.source != PasswordSource::keyring || isShared) {
        return;
    }
    try {
        removeFromKeyring(account);
    } catch (const Failure& failure) {
        complain(std::string(failure.what()) + "; the password is left in it");
    }
}

} // namespace

int runAccountList(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const Places places(store);
    Output output;
    if (options.json) {
        JsonLines lines(output);
        for (const SyncAccount& account : places.accounts()) {
            lines.add(jsonOf(store, places, account));
        }
        lines.finish();
    } else {
        for (const SyncAccount& account : places.accounts()) {
            for (const SyncCollection& book : places.booksOf(account.id)) {
                output.write(escaped(account.name + '/' + book.name) + '\t' + escaped(book.url) + '\t' +
                             escaped(account.user) + '\t' + sourceOf(account) + '\t' +
                             std::to_string(rowsOf(store, book.id).size()) + '\t' +
                             (book.isDefault ? "default" : "") + '\n');
            }
        }
    }
    output.finish();
    if (places.accounts().empty()) {
        std::cerr << "no accounts yet; addressbook account add makes one\n";
    }
    return kDone;
}

int runAccountRemove(const Options& options) {
    noteSignals();
    const Store store = open(options, Store::Access::readOnly);
    const Places places(store);
    const SyncAccount& account = places.account(options.removeAccount.name);
    std::vector<std::string> people;
    for (const RowId row : rowsIn(store, account.name)) {
        people.push_back(store.find(row).value().uid);
    }
    const std::string count = counted(people.size(), "record", "records");
    const bool deletes =
        options.removeAccount.deletePeople ||
        (!people.empty() && canAsk() &&
         confirm("Delete the " + count + " of " + account.name + " here as well? They stay on the server."));
    ChangeSet changes;
    changes.time = currentTime();
    changes.sync.removedAccounts.push_back(account.id);
    if (deletes) {
        changes.removed = std::move(people);
    }
    save(options, changes);
    forgetPassword(places, account);
    std::cerr << escaped(account.name) << ": removed; " << count
              << (deletes ? " deleted here\n" : " stay here\n");
    return kDone;
}

int runAccountDefault(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const Places places(store);
    ChangeSet changes;
    if (options.place == kLocal) {
        for (const SyncAccount& account : places.accounts()) {
            for (SyncCollection& book : places.booksOf(account.id)) {
                if (book.isDefault) {
                    book.isDefault = false;
                    changes.sync.collections.push_back(std::move(book));
                }
            }
        }
    } else {
        SyncCollection book = places.book(options.place);
        book.isDefault = true;
        changes.sync.collections.push_back(std::move(book));
    }
    save(options, changes);
    return kDone;
}

} // namespace addressbook::tool
