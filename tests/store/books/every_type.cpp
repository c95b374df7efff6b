// Adds the person of every_type.h to a book, with an older store: see README.md.

#include STORE_HEADER
#include "tests/store/books/every_type.h"

using namespace addressbook;

int main(int, char** arguments) {
    Store store(arguments[1]);
    ChangeSet changes;
    changes.time = Date{700'000'000};
    for (const auto& [name, type] : test::everyTypeDefinitions()) {
        changes.definitions.push_back({Kind::person, name, type});
    }
    auto values = test::everyTypeValues();
    values["Creation"] = Date{600'000'000};
    changes.records.push_back({test::kEveryTypeUid, Kind::person, true, values});
    changes.memberships.push_back(
        {"AAAAAAAA-0000-4000-8000-000000000003:ABGroup", test::kEveryTypeUid, true});
    changes.me = "AAAAAAAA-0000-4000-8000-000000000001:ABPerson";
    store.save(changes);
    // A removal brings the indexes up to date, in versions in which small saves do not.
    ChangeSet removal;
    removal.removed = {"nobody"};
    store.save(removal);
    // What a small save replaces waits in the change log, in versions that have a backlog.
    ChangeSet small;
    small.time = Date{700'000'001};
    small.records.push_back(
        {"AAAAAAAA-0000-4000-8000-000000000002:ABPerson",
         Kind::person,
         false,
         {{"Note", std::string("Brot & Brötchen")}, {"Organization", std::string("Bäckerei Krumm")}}});
    store.save(small);
}
