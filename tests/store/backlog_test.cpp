// Deferred indexing: results must not change, only the pages written.

#include "frameworks/AddressBook/store/backlog.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/store/schema.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class BacklogTest : public Scratch {
  protected:
    // Returns the first number of a statement's result, over a connection of its own.
    std::int64_t ask(const std::string& sql) const {
        sqlite3* database = nullptr;
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_open(store_.file().c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr), SQLITE_OK);
        sqlite3_step(statement);
        const std::int64_t answer = sqlite3_column_int64(statement, 0);
        sqlite3_finalize(statement);
        sqlite3_close(database);
        return answer;
    }
    std::int64_t waiting() const { return ask("SELECT count(*) FROM change WHERE replaced IS NOT NULL"); }
    std::int64_t indexed(const std::string& name) const {
        return ask("SELECT count(*) FROM term WHERE exact = '" + name + "'");
    }
    std::vector<std::string> named(const Store& from, std::string_view part) const {
        return found(from, query("First", Comparison::containsSubStringCaseInsensitive, text(part)));
    }

    Store store_{folder()};
};

TEST_F(BacklogTest, OneSaveInManyWritesTheIndexes) {
    const std::string uid = addPerson(store_, {{"First", text("name 0")}});
    const Store reader(folder(), Store::Access::readOnly);
    for (int i = 1; i <= 200; ++i) {
        const std::string name = "name " + std::to_string(i);
        const std::string old = "name " + std::to_string(i - 1) + "\x1F";
        saveRecords(store_, {updated(uid, {{"First", text(name)}})}, i + 1);
        EXPECT_LT(waiting(), 64);
        EXPECT_EQ(indexed(name), waiting() == 0 ? 1 : 0);
        for (const Store* any : {static_cast<const Store*>(&store_), &reader}) {
            ASSERT_THAT(named(*any, name), ElementsAre(uid)) << i;
            ASSERT_THAT(found(*any, query("First", Comparison::equal, text("name " + std::to_string(i - 1)))),
                        IsEmpty())
                << i;
            ASSERT_THAT(found(*any, query("Modification", Comparison::equal, Date{i + 1.0})),
                        ElementsAre(uid));
            ASSERT_THAT(found(*any, query("Modification", Comparison::lessThan, Date{i + 1.0})), IsEmpty());
        }
        if (i % 20 == 0) {
            EXPECT_THAT(store_.check(), IsEmpty()) << i;
            EXPECT_THAT(reader.check(), IsEmpty()) << i;
        }
    }
    EXPECT_EQ(indexed("name 191"), 1) << "no save has written the indexes";
}

// Each time that the indexes are written the text index gets a new piece, which every search would look into.
TEST_F(BacklogTest, TheTextIndexStaysInFewPieces) {
    const std::string uid = addPerson(store_, {{"Note", text("note 0")}});
    constexpr int kPieces = 15; // at 16 SQLite makes them one by itself
    for (int i = 1; i <= kPieces * kSavesInBacklog; ++i) {
        saveRecords(store_, {updated(uid, {{"Note", text("note " + std::to_string(i))}})}, i);
    }
    EXPECT_LE(ask("SELECT count(DISTINCT segid) FROM trigram_idx"), 4);
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(BacklogTest, ANewPersonMayChangeAndGoBeforeTheIndexesKnow) {
    const std::string uid = addPerson(store_, {{"First", text("Ada")}, {"own", text("1")}});
    const std::string other = addPerson(store_, {{"First", text("Adam")}});
    saveRecords(store_, {updated(uid, {{"First", text("Ida")}, {"own", Value()}, {"Note", text("n")}})}, 2);
    EXPECT_EQ(ask("SELECT count(*) FROM term"), 0);
    EXPECT_THAT(named(store_, "da"), ElementsAre(uid, other));
    EXPECT_THAT(named(store_, "ada"), ElementsAre(other));
    EXPECT_THAT(found(store_, query("own", Comparison::equal, Value())), IsEmpty());
    ChangeSet removal = changesAt(3);
    removal.removed = {uid};
    store_.save(removal);
    EXPECT_EQ(waiting(), 0);
    EXPECT_THAT(named(store_, "da"), ElementsAre(other));
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(BacklogTest, APropertyMayGoBeforeTheIndexesKnow) {
    ChangeSet changes = changesAt(1);
    changes.definitions = {{Kind::person, "own", 1}};
    store_.save(changes);
    const std::string uid = addPerson(store_, {{"own", text("1")}});
    ChangeSet removal = changesAt(2);
    removal.removedDefinitions = changes.definitions;
    EXPECT_THAT(store_.save(removal).updated, ElementsAre(uid));
    EXPECT_EQ(store_.value(store_.find(uid)->row, "own"), Value());
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(BacklogTest, ALargeTextIsIndexedAtOnce) {
    const std::string uid = addPerson(store_, {{"First", text("Ada")}});
    saveRecords(store_, {updated(uid, {{"Note", text(std::string(5000, 'n') + " needle")}})}, 2);
    EXPECT_EQ(waiting(), 2) << "what is new need not be kept";
    saveRecords(store_, {updated(uid, {{"Note", text("short")}})}, 3);
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(indexed("short"), 1);
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(BacklogTest, ManyRecordsInOneSaveAreIndexedAtOnce) {
    std::vector<RecordChange> records;
    records.reserve(9);
    for (int i = 0; i < 9; ++i) {
        records.push_back(inserted(newUid(Kind::person), {{"First", text("Ada")}}));
    }
    saveRecords(store_, records);
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(indexed("Ada"), 9);
    for (RecordChange& record : records) {
        record = updated(record.uid, {{"First", text("Ida")}});
    }
    saveRecords(store_, {updated(records[0].uid, {{"First", text("Eve")}})}, 2); // waits
    saveRecords(store_, records, 3);
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(indexed("Ida"), 9);
    EXPECT_EQ(ask("SELECT count(*) FROM term WHERE exact IN ('Ada', 'Eve')"), 0);
    EXPECT_THAT(store_.check(), IsEmpty());
}

// What a save costs on a disk is the pages that it writes.
TEST_F(BacklogTest, ASmallSaveWritesThreePages) {
    constexpr std::uintmax_t kFrame = 4096 + 24;
    const std::string uid = addPerson(store_, {{"First", text("Ada")}});
    const std::filesystem::path log = store_.file().string() + "-wal";
    for (int i = 2; i < 20; ++i) {
        const auto before = std::filesystem::file_size(log);
        saveRecords(store_, {updated(uid, {{"First", text(std::to_string(i))}})}, i);
        const auto written = std::filesystem::file_size(log) - before;
        EXPECT_GE(written, kFrame);
        EXPECT_LE(written, 3 * kFrame);
    }
}

TEST_F(BacklogTest, TheLogOfChangesStaysShort) {
    const std::string uid = addPerson(store_, {});
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(store_.file().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "UPDATE sqlite_sequence SET seq = 10100 WHERE name = 'change'", nullptr, nullptr,
                 nullptr);
    sqlite3_close(database);
    for (int i = 0; i < 64; ++i) {
        saveRecords(store_, {updated(uid, {{"First", text(std::to_string(i))}})}, i + 2);
    }
    EXPECT_EQ(ask("SELECT min(id) FROM change"), 10101);
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(BacklogTest, ADamagedOneIsToldBySearches) {
    const std::string uid = addPerson(store_, {{"First", text("Ada")}});
    ask("UPDATE change SET replaced = x'0501'");
    try {
        named(store_, "Ada");
        ADD_FAILURE() << "searched";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
    }
}

// Each of these is a value, but no list of properties with what the indexes hold of them.
TEST_F(BacklogTest, OneOfOtherValuesIsToldBySearchesAndSavesAndChecks) {
    const std::string uid = addPerson(store_, {{"First", text("Ada")}});
    const Value one = number(1), name = text("x"), held = Bytes{1};
    for (const Value& damaged : {name, Value(Array{one, one}), Value(Array{name, one, held}),
                                 Value(Array{one, name, held}), Value(Array{one, one, name})}) {
        ask("UPDATE change SET replaced = " + literal(encodeValue(damaged)));
        const Store store(folder());
        try {
            named(store, "Ada");
            ADD_FAILURE() << "searched";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
            EXPECT_THAT(error.what(), HasSubstr("the change log: no "));
        }
        EXPECT_THAT(store.check(), testing::Contains(HasSubstr("the change log: no ")));
        EXPECT_THROW(flushIndexes(store_), StoreError);
        EXPECT_EQ(store.value(store.find(uid)->row, "First"), text("Ada")); // is read nevertheless
    }
}

// A record that only the backlog still knows leaves nothing in the indexes.
TEST_F(BacklogTest, OneOfALostRecordIsForgotten) {
    addPerson(store_, {{"First", text("Ada")}});
    const std::string other = addPerson(store_, {{"First", text("Adam")}});
    ask("DELETE FROM record WHERE id = 1");
    EXPECT_THAT(named(store_, "ada"), ElementsAre(other));
    flushIndexes(store_);
    EXPECT_EQ(waiting(), 0);
    EXPECT_THAT(named(store_, "ada"), ElementsAre(other));
    EXPECT_EQ(indexed("Ada"), 0);
    EXPECT_THAT(store_.check(), IsEmpty());
}

// A book of the version before has no backlog and gets one.
TEST_F(BacklogTest, ComesToAnOlderBook) {
    const std::string uid = addPerson(store_, {{"First", text("Ada")}});
    flushIndexes(store_);
    const std::filesystem::path older = root() / "older";
    std::filesystem::create_directory(older);
    ask("VACUUM INTO '" + (older / "AddressBook.db").string() + "'");
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open((older / "AddressBook.db").c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, downgradeTo(2).c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    Store migrated(older);
    EXPECT_THAT(named(migrated, "ada"), ElementsAre(uid));
    EXPECT_EQ(migrated.changesSince(0).size(), 1U);
    saveRecords(migrated, {updated(uid, {{"First", text("Ida")}})}, 2);
    EXPECT_THAT(named(migrated, "ada"), IsEmpty());
    EXPECT_THAT(named(migrated, "ida"), ElementsAre(uid));
    EXPECT_THAT(migrated.check(), IsEmpty());
}

} // namespace
} // namespace addressbook::test
