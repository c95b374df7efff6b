// Books that earlier versions of this program wrote, kept as files in books/: each is opened and upgraded,
// and has its old contents.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/store/schema.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include "tests/store/books/every_type.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <fstream>
#include <sstream>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const fs::path kBooks = BOOKS_FOLDER;
const std::string kIda = "AAAAAAAA-0000-4000-8000-000000000001:ABPerson";
const std::string kBakery = "AAAAAAAA-0000-4000-8000-000000000002:ABPerson";
const std::string kEveryone = "AAAAAAAA-0000-4000-8000-000000000003:ABGroup";

// A value in a form that a reader compares by eye. Identifiers of entries are left out: they were made at
// random.
std::string textOf(const Value& value) {
    std::ostringstream out;
    if (const auto* text = value.as<std::string>()) {
        out << '"' << *text << '"';
    } else if (const auto* whole = value.as<std::int64_t>()) {
        out << *whole;
    } else if (const auto* date = value.as<Date>()) {
        out << "date " << std::fixed << date->seconds;
    } else if (const auto* day = value.as<FloatingDate>()) {
        out << "day " << std::fixed << day->seconds;
    } else if (const auto* bytes = value.as<Bytes>()) {
        out << bytes->size() << " bytes";
    } else if (const auto* array = value.as<Array>()) {
        out << '[';
        for (const Value& item : *array) {
            out << textOf(item) << ',';
        }
        out << ']';
    } else if (const auto* fields = value.as<Dictionary>()) {
        out << '{';
        for (const auto& [key, field] : *fields) {
            out << key << '=' << textOf(field) << ',';
        }
        out << '}';
    } else if (const auto* list = value.as<MultiValue>()) {
        for (const Entry& entry : list->entries) {
            out << '(' << entry.label << ' ' << textOf(entry.value)
                << (entry.identifier == list->primary ? " primary)" : ")");
        }
    }
    return out.str();
}

// All that the vCard's people hold, a line each, but the dates of import.
std::string contentsOf(const Store& store) {
    std::ostringstream out;
    for (const std::string& uid : {kIda, kBakery}) {
        const auto record = store.find(uid);
        if (!record) {
            return "no record " + uid;
        }
        auto values = store.values(record->row);
        values[std::string(property::kImage)] = store.value(record->row, property::kImage);
        for (const auto& [name, value] : values) {
            if (!value.empty() && name != property::kCreation && name != property::kModification) {
                out << uid.substr(35, 1) << ' ' << name << ' ' << textOf(value) << '\n';
            }
        }
    }
    return out.str();
}

std::string readFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

class BooksTest : public Scratch, public testing::WithParamInterface<int> {
  protected:
    BooksTest() {
        moveTo("UTC"); // in which they were written
        fs::create_directory(folder());
        fs::copy_file(kBooks / ("version" + std::to_string(GetParam()) + ".db"), file());
        fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
    }
    fs::path file() const { return folder() / kFileName; }
    sql::Connection connect() const {
        return {file(), databaseUri(file()), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, std::chrono::seconds(1)};
    }
    int version() const {
        auto connection = connect();
        return schemaVersion(connection);
    }
};

TEST_P(BooksTest, IsOfItsVersionAndIsBroughtUpToDate) {
    EXPECT_EQ(version(), GetParam());
    {
        const Store store(folder());
    }
    EXPECT_EQ(version(), static_cast<int>(kSchemaVersion));
}

TEST_P(BooksTest, SaysWhatItAlwaysSaid) {
    const Store store(folder());
    EXPECT_EQ(contentsOf(store), readFile(kBooks / (GetParam() < 7 ? "contents.txt" : "contents7.txt")));
    EXPECT_EQ(store.me(), kIda);
    EXPECT_EQ(store.count(Kind::person), 3);
    EXPECT_EQ(store.count(Kind::group), 3);
    std::vector<std::string> members;
    for (const RowId row : store.members(store.find(kEveryone)->row)) {
        members.push_back(store.find(row)->uid);
    }
    EXPECT_THAT(members, ElementsAre(kIda, kBakery, kEveryTypeUid));
}

TEST_P(BooksTest, KeepsValuesOfEveryType) {
    const Store store(folder());
    const auto record = store.find(kEveryTypeUid);
    ASSERT_TRUE(record);
    auto values = store.values(record->row);
    for (const auto& [name, value] : everyTypeValues()) {
        EXPECT_EQ(values[name], value) << name;
    }
    EXPECT_TRUE(std::signbit(*values["aReal"].as<double>()));
    EXPECT_EQ(values[std::string(property::kCreation)], Value(Date{600'000'000}));
    EXPECT_EQ(values[std::string(property::kModification)], Value(Date{700'000'000}));
    std::map<std::string, int> types;
    for (const PropertyDefinition& definition : store.definitions()) {
        types[definition.name] = definition.type;
    }
    EXPECT_EQ(types, everyTypeDefinitions());
}

// The indexes, too, are those that this program would write: their numbers and words have never changed.
TEST_P(BooksTest, IsSoundWithItsIndexes) {
    const Store store(folder());
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_P(BooksTest, IsSearchedByEveryIndex) {
    const Store store(folder());
    const auto people = [&](const char* property, Comparison comparison, Value value) {
        return found(store, query(property, comparison, std::move(value)));
    };
    EXPECT_THAT(people("Last", Comparison::equalCaseInsensitive, text("berg")), ElementsAre(kIda));
    EXPECT_THAT(people("Note", Comparison::containsSubString, text("麦.\nZw")), ElementsAre(kIda));
    EXPECT_THAT(people("aWhole", Comparison::lessThan, number(0)), ElementsAre(kEveryTypeUid));
    EXPECT_THAT(people("aText", Comparison::notEqual, Value()), ElementsAre(kIda, kBakery));
    EXPECT_THAT(people("UID", Comparison::equal, text(kEveryTypeUid)), ElementsAre(kEveryTypeUid));
    EXPECT_THAT(people("Birthday", Comparison::notEqual, Value()), ElementsAre(kEveryTypeUid));
    // The last save replaced these; where there is a backlog, it still waits there.
    EXPECT_THAT(people("Organization", Comparison::suffixMatch, text("Krumm")), ElementsAre(kBakery));
    EXPECT_THAT(people("Organization", Comparison::containsSubString, text("Krümel")), IsEmpty());
    EXPECT_THAT(people("Note", Comparison::prefixMatch, text("Brot")), ElementsAre(kBakery));
}

TEST_P(BooksTest, LeavesWhatASmallSaveReplacedInTheBacklog) {
    auto connection = connect();
    auto column = connection.prepare("SELECT 1 FROM pragma_table_info('change') WHERE name = 'replaced'");
    const bool hasBacklog = GetParam() >= 3;
    ASSERT_EQ(column.step(), hasBacklog);
    if (!hasBacklog) {
        return;
    }
    auto statement = connection.prepare("SELECT count(*) FROM change WHERE length(replaced) > 0");
    ASSERT_TRUE(statement.step());
    EXPECT_EQ(statement.integer(0), 1);
}

TEST_P(BooksTest, EncodesEachRecordAsItWas) {
    auto connection = connect();
    auto statement = connection.prepare("SELECT card FROM record");
    int records = 0;
    while (statement.step()) {
        std::map<std::string, std::string> values;
        visitProperties(statement.blob(0), [&](std::string_view name, std::string_view bytes) {
            values.emplace(name, encodeValue(decodeValue(bytes)));
        });
        EXPECT_EQ(encodeRecord(values), statement.blob(0));
        ++records;
    }
    EXPECT_EQ(records, 6);
}

TEST_P(BooksTest, HasTheTablesOfANewBookAfterwards) {
    const auto tables = [](const fs::path& book) {
        sql::Connection connection(book, databaseUri(book), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                                   std::chrono::seconds(1));
        std::map<std::string, std::string> found;
        auto statement = connection.prepare("SELECT name, sql FROM sqlite_schema WHERE sql IS NOT NULL");
        while (statement.step()) {
            found.emplace(statement.text(0), statement.text(1));
        }
        return found;
    };
    {
        const Store migrated(folder()), made(root() / "new");
    }
    EXPECT_EQ(tables(file()), tables(root() / "new" / kFileName));
}

TEST_P(BooksTest, TakesChangesAndTellsThem) {
    Store store(folder());
    const std::int64_t last = store.lastChange();
    EXPECT_EQ(store.changesSince(0).size(), static_cast<std::size_t>(last));
    saveRecords(store, {updated(kIda, {{"Last", text("Tal")}})});
    EXPECT_THAT(store.changesSince(last).front().updated, ElementsAre(kIda));
    EXPECT_THAT(found(store, query("Last", Comparison::equal, text("Tal"))), ElementsAre(kIda));
    EXPECT_THAT(store.check(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Versions, BooksTest, testing::Range(1, static_cast<int>(kSchemaVersion)));

} // namespace
} // namespace addressbook::test
