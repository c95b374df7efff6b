#include "tools/addressbook/sync/places.h"

#include "tools/addressbook/output.h"
#include "tools/addressbook/property_path.h"
#include "tools/addressbook/sync/carddav_library.h"

#include <algorithm>
#include <iterator>

namespace addressbook::tool {
namespace {

// Throws that there is no such account or address book, and which there are.
[[noreturn]] void failUnknown(const std::string& what, const std::vector<std::string>& known) {
    throw Failure(what +
                  (known.empty() ? "; addressbook account add makes one" : "; there is: " + listed(known)));
}

} // namespace

Places::Places(const Store& store) : accounts_(store.syncAccounts()), books_(store.syncCollections()) {}

std::vector<SyncCollection> Places::booksOf(std::int64_t account) const {
    std::vector<SyncCollection> books;
    std::copy_if(books_.begin(), books_.end(), std::back_inserter(books),
                 [&](const SyncCollection& book) { return book.account == account; });
    return books;
}

const SyncAccount& Places::account(std::string_view name) const {
    const auto found = std::find_if(accounts_.begin(), accounts_.end(),
                                    [&](const SyncAccount& account) { return account.name == name; });
    if (found == accounts_.end()) {
        std::vector<std::string> known;
        known.reserve(accounts_.size());
        for (const SyncAccount& account : accounts_) {
            known.push_back(account.name);
        }
        failUnknown("no account is named \"" + std::string(name) + '"', known);
    }
    return *found;
}

std::vector<SyncCollection> Places::books(std::string_view name) const {
    const std::size_t slash = name.find('/');
    std::vector<SyncCollection> books = booksOf(account(name.substr(0, slash)).id);
    if (slash == std::string_view::npos) {
        return books;
    }
    const std::vector<std::string> known = namesOf(books);
    std::erase_if(books, [&](const SyncCollection& book) { return book.name != name.substr(slash + 1); });
    if (books.empty()) {
        failUnknown("no address book of an account is named \"" + std::string(name) + '"', known);
    }
    return books;
}

SyncCollection Places::book(std::string_view name) const {
    std::vector<SyncCollection> books = this->books(name);
    const auto main =
        std::find_if(books.begin(), books.end(), [](const SyncCollection& book) { return book.isDefault; });
    if (main != books.end()) {
        return *main;
    }
    if (books.size() != 1) {
        throw Failure(std::string(name) + " has several address books; say which: " + listed(namesOf(books)));
    }
    return books.front();
}

const SyncCollection* Places::bookAt(std::string_view url) const {
    const auto found = std::find_if(books_.begin(), books_.end(),
                                    [&](const SyncCollection& book) { return book.url == url; });
    return found == books_.end() ? nullptr : &*found;
}

std::vector<std::string> Places::namesOf(const std::vector<SyncCollection>& books) const {
    std::vector<std::string> names;
    names.reserve(books.size());
    for (const SyncCollection& book : books) {
        names.push_back(nameOf(book.id));
    }
    return names;
}

std::string Places::nameOf(std::int64_t book) const {
    for (const SyncCollection& each : books_) {
        for (const SyncAccount& account : accounts_) {
            if (each.id == book && account.id == each.account) {
                return account.name + '/' + each.name;
            }
        }
    }
    return std::string(kLocal);
}

std::string Places::placeOf(const Store& store, std::string_view uid) const {
    const std::vector<SyncLink> links = store.syncLinksOf(uid); // the one that it belongs to is the first
    return nameOf(links.empty() || links.front().leaves ? 0 : links.front().collection);
}

std::vector<std::string> Places::names() const {
    std::vector<std::string> names;
    for (const SyncAccount& account : accounts_) {
        names.push_back(account.name);
        for (const SyncCollection& book : booksOf(account.id)) {
            names.push_back(nameOf(book.id));
        }
    }
    return names;
}

std::string hostOf(const SyncAccount& account) {
    const bool hasScheme = account.url.find("://") != std::string::npos;
    const auto url = carddavLibrary().parseUrl(
        hasScheme ? account.url : "https://" + account.url.substr(account.url.rfind('@') + 1));
    return url ? url->host : account.url;
}

std::set<RowId> rowsOf(const Store& store, std::int64_t book) {
    std::set<RowId> rows;
    store.visitSyncLinks(book, [&](SyncLink&& link) {
        const auto record = link.leaves ? std::nullopt : store.find(link.uid);
        if (record) {
            rows.insert(record->row);
        }
    });
    return rows;
}

std::set<RowId> rowsIn(const Store& store, std::string_view place) {
    const Places places(store);
    std::set<RowId> rows;
    const auto add = [&](std::int64_t book) { rows.merge(rowsOf(store, book)); };
    if (place != kLocal) {
        for (const SyncCollection& book : places.books(place)) {
            add(book.id);
        }
        return rows;
    }
    for (const SyncAccount& account : places.accounts()) {
        for (const SyncCollection& book : places.booksOf(account.id)) {
            add(book.id);
        }
    }
    std::set<RowId> local;
    for (const Kind kind : {Kind::person, Kind::group}) {
        for (const RowId row : store.rows(kind)) {
            if (!rows.contains(row)) {
                local.insert(row);
            }
        }
    }
    return local;
}

} // namespace addressbook::tool
