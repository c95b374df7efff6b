// A program that has the address book open as another process. Each line that it reads is one save, of orders
// separated by ";":
//
//   insert UID FIRST    update UID PROPERTY TEXT    delete UID    join GROUP MEMBER    leave GROUP MEMBER
//   define NAME         me UID
//
// It replies with the number of the save in the change log. "burst COUNT UID..." makes COUNT saves, the n-th
// of which sets the first name of the n-th person, in turn, to n. "get UID PROPERTY" replies with a text.

#include "frameworks/AddressBook/store/store.h"

#include <iostream>
#include <sstream>

using namespace addressbook;

namespace {

void add(ChangeSet& changes, std::istringstream& order) {
    std::string verb, first, second, third;
    order >> verb >> first >> second >> third;
    const Kind kind = first.ends_with(":ABGroup") ? Kind::group : Kind::person;
    const auto named = kind == Kind::group ? property::kGroupName : property::kFirst;
    if (verb == "insert") {
        changes.records.push_back({first, kind, true, {{std::string(named), second}}});
    } else if (verb == "update") {
        changes.records.push_back({first, kind, false, {{second, third}}});
    } else if (verb == "delete") {
        changes.removed.push_back(first);
    } else if (verb == "join" || verb == "leave") {
        changes.memberships.push_back({first, second, verb == "join"});
    } else if (verb == "define") {
        changes.definitions.push_back({Kind::person, first, 1});
    } else if (verb == "me") {
        changes.me = first;
    } else {
        throw std::runtime_error("no such order: " + verb);
    }
}

std::int64_t burst(Store& store, std::istringstream& order) {
    int count = 0;
    std::vector<std::string> uids;
    order >> count;
    for (std::string uid; order >> uid;) {
        uids.push_back(uid);
    }
    SaveResult result;
    for (int i = 1; i <= count; ++i) {
        ChangeSet changes;
        changes.time = Date{static_cast<double>(i)};
        changes.records.push_back({uids[static_cast<std::size_t>(i) % uids.size()],
                                   Kind::person,
                                   false,
                                   {{std::string(property::kFirst), std::to_string(i)}}});
        result = store.save(changes);
    }
    return result.change;
}

} // namespace

int main() {
    try {
        Store store(Store::defaultFolder());
        for (std::string line; std::getline(std::cin, line);) {
            std::istringstream orders(line);
            if (line.starts_with("burst")) {
                orders.ignore(5);
                std::cout << burst(store, orders) << std::endl;
                continue;
            }
            if (line.starts_with("get")) {
                std::string uid, name;
                orders.ignore(3);
                orders >> uid >> name;
                const auto record = store.find(uid);
                const Value value = record ? store.value(record->row, name) : Value();
                const auto* text = value.as<std::string>();
                std::cout << (text != nullptr ? *text : "-") << std::endl;
                continue;
            }
            ChangeSet changes;
            changes.time = Date{1};
            for (std::string one; std::getline(orders, one, ';');) {
                std::istringstream order(one);
                add(changes, order);
            }
            std::cout << store.save(changes).change << std::endl;
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
