#include "tools/addressbook/sync/chosen_books.h"

#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/places.h"

#include <set>
#include <utility>

namespace addressbook::tool {

std::vector<AccountBooks> chosenBooks(const Store& store, const std::vector<std::string>& names) {
    const Places places(store);
    if (places.accounts().empty()) {
        throw Failure("there is no account to keep in step with; addressbook account add makes one");
    }
    std::set<std::int64_t> wanted;
    for (const std::string& name : names) {
        for (const SyncCollection& book : places.books(name)) {
            wanted.insert(book.id);
        }
    }
    std::vector<AccountBooks> chosen;
    for (const SyncAccount& account : places.accounts()) {
        AccountBooks one{account, {}};
        for (SyncCollection& book : places.booksOf(account.id)) {
            if (names.empty() || wanted.contains(book.id)) {
                std::string name = places.nameOf(book.id);
                one.books.push_back({std::move(book), std::move(name)});
            }
        }
        if (!one.books.empty()) {
            chosen.push_back(std::move(one));
        }
    }
    return chosen;
}

} // namespace addressbook::tool
