// The address book's file and its log: a small book is made, the input changes bytes of it, and everything in it is read,
// searched, checked, changed and repaired. An error is an answer; a crash, or an error of any other kind, is none.
//
// The input: a byte of choices, then changes: a byte for what and where, the place, and bytes.

#include "frameworks/AddressBook/store/checksum.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "frameworks/AddressBook/store/store.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"
#include "fuzz/support/sqlite_log.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>

namespace {

using namespace addressbook;
namespace fs = std::filesystem;

constexpr const char* kPerson = "AAAAAAAA-0000-4000-8000-000000000001:ABPerson";
constexpr const char* kOther = "AAAAAAAA-0000-4000-8000-000000000002:ABPerson";
constexpr const char* kRemoved = "AAAAAAAA-0000-4000-8000-000000000003:ABPerson";
constexpr const char* kGroup = "AAAAAAAA-0000-4000-8000-000000000004:ABGroup";
constexpr const char* kSubgroup = "AAAAAAAA-0000-4000-8000-000000000005:ABGroup";
constexpr const char* kNew = "AAAAAAAA-0000-4000-8000-000000000006:ABPerson";

constexpr std::chrono::milliseconds kPatience{50}; // nobody else has the book open

const fs::path& folder() {
    static const support::TemporaryHome home;
    static const fs::path path = home.path() / "book";
    return path;
}

Value text(const char* characters) {
    return std::string(characters);
}

MultiValue listOf(Value value) {
    MultiValue list;
    list.entries.push_back({"AAAAAAAA-0000-4000-8000-0000000000E1", "_$!<Home>!$_", std::move(value)});
    list.entries.push_back({"own", "mine", text("two")});
    list.primary = "own";
    return list;
}

// Something in every table.
ChangeSet contents() {
    ChangeSet changes;
    changes.time = Date{1};
    changes.definitions = {{Kind::person, "shoe size", 1}, {Kind::person, "day", 8}};
    changes.records = {
        {kPerson,
         Kind::person,
         true,
         {{"First", text("Ada")},
          {"Last", text("Lovelace")},
          {"Note", text("The Harbour, and a longer note that has trigrams")},
          {"Birthday", Date{-1e9}},
          {"ABPersonFlags", std::int64_t{1}},
          {"Phone", listOf(text("555-1234"))},
          {"Address", listOf(Dictionary{{"City", text("Bristol")}, {"Street", text("1 Main St")}})},
          {"shoe size", text("38")},
          {"day", DateComponents{1970, 3, {}, {}, {}, {}}},
          {std::string(property::kImage), Bytes(40, 'p')}}},
        {kOther, Kind::person, true, {{"First", text("Ben")}, {"Note", std::string(6000, 'n')}}},
        {kRemoved, Kind::person, true, {{"First", text("Gone")}}},
        {kGroup, Kind::group, true, {{"GroupName", text("Friends")}}},
        {kSubgroup, Kind::group, true, {{"GroupName", text("Close friends")}}},
    };
    changes.memberships = {{kGroup, kPerson}, {kGroup, kOther}, {kGroup, kSubgroup}, {kSubgroup, kOther}};
    changes.me = kPerson;
    changes.sync.accounts.emplace_back().name = "work";
    changes.sync.collections.emplace_back().url = "https://example.com/ida/";
    SyncConflict& conflict = changes.sync.conflicts.emplace_back();
    conflict.uid = kPerson;
    conflict.property = "First";
    conflict.value = text("Eve");
    return changes;
}

// The later changes of it, which are in the log: values replaced, of which the indexes do not know, and a link.
void change(Store& store) {
    ChangeSet changes;
    changes.time = Date{2};
    changes.removed = {kRemoved};
    store.save(changes);
    changes.removed.clear();
    changes.records = {{kOther, Kind::person, false, {{"First", text("Bert")}, {"Last", text("Smith")}}}};
    SyncLink& link = changes.sync.links.emplace_back();
    link.collection = 1;
    link.href = "a.vcf";
    link.uid = kPerson;
    link.text = "BEGIN:VCARD\r\nEND:VCARD\r\n";
    store.save(changes);
}

struct Files {
    std::string book;
    std::string log;
};

Files makeBook() {
    Store(folder()).save(contents()); // nobody else has it open: the log is taken over
    Store store(folder());
    change(store);
    return {support::bytesOf(store.file()), support::bytesOf(store.file().string() + "-wal")};
}

// A record's values as they are in the files, with their checksum before them; in the log when [row] was changed there.
std::string_view cardIn(const Files& files, const std::string& card) {
    for (const std::string* file : {&files.log, &files.book}) {
        if (const std::size_t place = file->rfind(card); place != std::string::npos) {
            return std::string_view(*file).substr(place, card.size());
        }
    }
    return {};
}

// The values of all records that are in the files in one piece.
const std::vector<std::string>& cards() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> found;
        const Store store(folder(), Store::Access::readOnly);
        for (const RecordRow& row : store.readFrom(1, 100)) {
            found.push_back(row.properties);
        }
        return found;
    }();
    return all;
}

// Changes bytes of a record's values, and makes their checksum right.
void changeCard(Files& files, fuzz::Input& input) {
    const std::string& card = cards()[input.number<std::uint8_t>() % cards().size()];
    const std::string_view found = cardIn(files, card);
    const std::size_t place = 8 + input.number<std::uint16_t>() % (card.size() - 8);
    std::string_view bytes = input.bytes(input.number<std::uint8_t>());
    if (found.empty()) {
        return; // changed already
    }
    std::string changed = card;
    bytes = bytes.substr(0, changed.size() - place);
    changed.replace(place, bytes.size(), bytes);
    const std::uint64_t sum = checksum(std::string_view(changed).substr(8));
    for (unsigned i = 0; i < 8; ++i) {
        changed[i] = static_cast<char>(sum >> 8 * i & 0xFF);
    }
    std::memcpy(const_cast<char*>(found.data()), changed.data(), changed.size());
}

void changePart(std::string& file, unsigned how, fuzz::Input& input) {
    const std::size_t place = input.number<std::uint32_t>() % std::max<std::size_t>(1, file.size());
    const std::size_t left = file.size() - place;
    switch (how) {
    case 0: {
        const std::string_view bytes = input.bytes(input.number<std::uint8_t>()).substr(0, left);
        file.replace(place, bytes.size(), bytes);
        break;
    }
    case 1: {
        const auto mask = input.number<std::uint8_t>();
        if (left != 0) {
            file[place] = static_cast<char>(static_cast<unsigned char>(file[place]) ^ mask);
        }
        break;
    }
    case 2: { // another place of the same file, to pages of any size
        const std::size_t from = input.number<std::uint32_t>() % std::max<std::size_t>(1, file.size());
        const std::size_t size = std::min(left, std::size_t{1} << input.number<std::uint8_t>() % 14);
        file.replace(place, size, std::string(file.substr(from, size)));
        break;
    }
    default:
        file.resize(place);
    }
}

// Runs the work, which may find the book damaged.
template <class Work>
bool attempt(Work work) {
    try {
        work();
        return true;
    } catch (const StoreError& error) {
        fuzz::claim(std::string_view(error.what()).find(folder().string()) != std::string_view::npos,
                    "an error names the file");
        return false;
    }
}

void readRecord(const Store& store, RowId row) {
    attempt([&] {
        if (const auto record = store.find(row)) {
            (void)store.find(record->uid);
            (void)store.read(record->uid);
            (void)store.syncLinksOf(record->uid);
        }
    });
    attempt([&] { (void)store.values(row); });
    attempt([&] { (void)store.value(row, property::kImage); });
    attempt([&] { (void)store.members(row); });
    attempt([&] { (void)store.subgroups(row); });
    attempt([&] { (void)store.parents(row); });
    attempt([&] { (void)store.findDeleted(row); });
}

void search(const Store& store) {
    const std::pair<const char*, Value> wanted[] = {
        {"First", text("Ada")},    {"Note", text("arbour")},
        {"Phone", text("555")},    {"ABPersonFlags", std::int64_t{1}},
        {"Birthday", Date{-1e9}},  {"Birthday", std::int64_t{86400}},
        {"shoe size", text("38")}, {"Address", text("Bristol")},
        {"Last", Value()},
    };
    for (const auto& [name, value] : wanted) {
        for (int comparison = 0; comparison < kComparisonCount; ++comparison) {
            attempt([&] {
                const Query query{
                    Condition{Kind::person, name, {}, {}, value, static_cast<Comparison>(comparison)}};
                for (const RowId row : store.search(query, Date{0})) {
                    (void)store.find(row);
                }
            });
        }
    }
}

void readEverything(const Store& store) {
    for (const Kind kind : {Kind::person, Kind::group}) {
        attempt([&] {
            for (const RowId row : store.rows(kind)) {
                readRecord(store, row);
            }
        });
        attempt([&] { (void)store.count(kind); });
    }
    attempt([&] { (void)store.readFrom(1, 100); });
    attempt([&] { (void)store.me(); });
    attempt([&] { (void)store.definitions(); });
    attempt([&] { (void)store.changesSince(0); });
    attempt([&] { (void)store.syncAccounts(); });
    attempt([&] { (void)store.syncCollections(); });
    attempt([&] { (void)store.syncConflicts(); });
    attempt([&] { store.visitSyncLinks(1, [](SyncLink&&) {}); });
    attempt([&] { (void)store.syncLink(1, "a.vcf"); });
    search(store);
}

// Saves something of everything. What was saved is there, or the book is told to be damaged.
void save(Store& store) {
    ChangeSet changes;
    changes.time = Date{3};
    changes.records = {{kNew, Kind::person, true, {{"First", text("Cleo")}, {"Note", text("new here")}}},
                       {kPerson, Kind::person, false, {{"First", text("Adele")}, {"Note", Value()}}}};
    changes.memberships = {{kGroup, kNew}, {kGroup, kOther, false}};
    attempt([&] {
        store.save(changes);
        const auto found = store.find(kNew);
        if (!found || store.value(found->row, "First") != text("Cleo")) {
            fuzz::claim(!store.check().empty(), "what was saved is there, or the damage is told");
        }
    });
    changes = {};
    changes.time = Date{4};
    changes.removed = {kOther, kSubgroup};
    changes.removedDefinitions = {{Kind::person, "shoe size", 1}};
    attempt([&] { store.save(changes); });
}

void write(const Files& files, bool withLog) {
    fs::remove_all(folder());
    fs::create_directory(folder());
    const fs::path file = folder() / kFileName;
    std::ofstream(file, std::ios::binary) << files.book;
    if (withLog) {
        std::ofstream(file.string() + "-wal", std::ios::binary) << files.log;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Files whole = makeBook();
    (void)cards();
    fuzz::Input input(data, size);
    const auto choices = input.number<std::uint8_t>();
    Files files = whole;
    while (!input.ended()) {
        const auto what = input.number<std::uint8_t>();
        if (what % 8 < 4) {
            changeCard(files, input);
        } else {
            changePart(what % 8 < 6 ? files.book : files.log, what / 8 % 4, input);
        }
    }
    if ((choices & 1) == 0) {
        fuzz::renewLogChecksums(files.log);
    }
    write(files, (choices & 2) == 0);
    if ((choices & 4) != 0) {
        attempt([] { readEverything(Store(folder(), Store::Access::readOnly, kPatience)); });
    }
    attempt([&] {
        Store store(folder(), Store::Access::readWrite, kPatience);
        readEverything(store);
        save(store);
        attempt([&] { (void)store.check(); });
    });
    attempt([&] {
        if (repair(folder()).needed) {
            fuzz::claim(Store(folder()).check().empty(), "a book that was repaired is sound");
        }
    });
    return 0;
}
