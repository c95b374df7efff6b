#include "fuzz/support/shared_book.h"

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "tests/support/files.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace fuzz {

namespace {

using namespace addressbook;
namespace fs = std::filesystem;

constexpr const char* kPeople[] = {"AAAAAAAA-0000-4000-8000-000000000001:ABPerson",
                                   "AAAAAAAA-0000-4000-8000-000000000002:ABPerson",
                                   "AAAAAAAA-0000-4000-8000-000000000003:ABPerson"};
constexpr const char* kGroups[] = {"AAAAAAAA-0000-4000-8000-000000000004:ABGroup",
                                   "AAAAAAAA-0000-4000-8000-000000000005:ABGroup"};

Value text(std::string_view characters) {
    return std::string(characters);
}

fs::path backupOf(const fs::path& folder) {
    return folder.string() + ".backup";
}

// Returns the bytes of the book's file.
std::string makeBook(const fs::path& folder) {
    fs::create_directory(folder);
    setenv("ADDRESSBOOK_HOME", folder.c_str(), 1);
    setenv("TZ", "UTC", 1);
    ChangeSet changes;
    changes.time = Date{1};
    changes.definitions = {{Kind::person, "Customer", 1}};
    for (const char* person : kPeople) {
        MultiValue phones;
        phones.entries = {{"AAAAAAAA-0000-4000-8000-0000000000E1", "_$!<Home>!$_", text("555-1234")},
                          {"own", "Cottage", text("2")}};
        MultiValue addresses;
        addresses.entries = {{"AAAAAAAA-0000-4000-8000-0000000000E1", "_$!<Work>!$_",
                              Dictionary{{"City", text("Bristol")}, {"Street", text("1 Main St")}}}};
        changes.records.push_back({person,
                                   Kind::person,
                                   true,
                                   {{"First", text("Ada")},
                                    {"Last", text(person)},
                                    {"Note", text("The Harbour")},
                                    {"Phone", phones},
                                    {"Address", addresses},
                                    {"Customer", text("7")}}});
    }
    for (const char* group : kGroups) {
        changes.records.push_back({group, Kind::group, true, {{"GroupName", text("Harbour")}}});
        changes.memberships.push_back({group, kPeople[0]});
    }
    changes.memberships.push_back({kGroups[0], kGroups[1]});
    changes.me = kPeople[2];
    Store(folder).save(changes);
    backUp(folder, backupOf(folder), Existing::replace);
    return support::bytesOf(folder / kFileName);
}

// What the other process can be told.
enum class Order : std::uint8_t {
    close,
    restore,
    insert,
    update,
    remove,
    join,
    leave,
    define,
    undefine,
    setMe
};
constexpr unsigned kOrders = 10;

// Saves a change.
void save(Store& store, Order order, Input& input) {
    const char* const person = kPeople[input.number<std::uint8_t>() % std::size(kPeople)];
    const char* const group = kGroups[input.number<std::uint8_t>() % std::size(kGroups)];
    const std::string value(input.rest());
    ChangeSet changes;
    changes.time = Date{2};
    switch (order) {
    case Order::insert:
        changes.records = {{newUid(Kind::person), Kind::person, true, {{"First", value}}}};
        break;
    case Order::update:
        changes.records = {{person, Kind::person, false, {{"First", value}, {"Phone", Value()}}},
                           {group, Kind::group, false, {{"GroupName", value}}}};
        break;
    case Order::remove:
        changes.removed = {value.empty() ? person : group};
        break;
    case Order::join:
    case Order::leave:
        changes.memberships = {{group, value.empty() ? person : kGroups[0], order == Order::join}};
        break;
    case Order::define:
        changes.definitions = {{Kind::person, "Rating", value.empty() ? 1 : 2}};
        break;
    case Order::undefine:
        changes.removedDefinitions = {{Kind::person, "Customer", 1}};
        break;
    default:
        changes.me = value.empty() ? "" : person;
    }
    store.save(changes);
}

// Runs in the other process.
void carryOut(std::string_view bytes) {
    static std::unique_ptr<Store> store;
    Input input(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const auto order = static_cast<Order>(input.number<std::uint8_t>());
    const fs::path folder = defaultFolder();
    try {
        if (order == Order::close) {
            store.reset();
        } else if (order == Order::restore) {
            restore(folder, backupOf(folder));
        } else {
            if (store == nullptr || store->moved()) {
                store = std::make_unique<Store>(folder);
            }
            save(*store, order, input);
        }
    } catch (const StoreError&) {
        return; // what it wants to change is no more there
    } catch (const BackupError&) {
        return;
    }
}

} // namespace

SharedBook::SharedBook() : folder_(home_.path() / "book"), bytes_(makeBook(folder_)), other_(carryOut) {}

void SharedBook::renew() {
    other_.carryOut(std::string(1, static_cast<char>(Order::close)));
    for (const auto& left : fs::directory_iterator(folder_)) {
        fs::remove_all(left);
    }
    std::ofstream(folder_ / kFileName, std::ios::binary) << bytes_;
}

void SharedBook::change(unsigned what, Input& input) {
    std::string order(1, static_cast<char>(1 + what % (kOrders - 1)));
    order += input.bytes(2);
    order += input.bytes(input.number<std::uint8_t>() % 16);
    other_.carryOut(order);
}

bool SharedBook::isSound() const {
    return Store(folder_).check().empty();
}

} // namespace fuzz
