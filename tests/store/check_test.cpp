// check() finds damage that is made directly in the database.

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include <atomic>
#include <thread>

namespace addressbook::test {
namespace {

struct Planted {
    const char* name;
    const char* sql;
    const char* found; // part of some line of the report
};

void PrintTo(const Planted& planted, std::ostream* out) {
    *out << planted.name;
}

class CheckTest : public Scratch, public testing::WithParamInterface<Planted> {
  protected:
    CheckTest() {
        Store store(folder());
        const std::string group = newUid(Kind::group);
        const std::string person = newUid(Kind::person);
        ChangeSet changes = changesAt(1);
        changes.definitions = {{Kind::person, "own", 1}};
        changes.records = {
            inserted(person, {{"First", text("Ada Müller")}, {".Image", Bytes{1}}, {"own", text("o")}}),
            inserted(group, {{"GroupName", text("Friends")}, {"own", text("abcabdab")}}, Kind::group)};
        changes.memberships = {{group, person, true}};
        changes.me = person;
        changes.endings = {{Kind::group, "GroupName"}};
        store.save(changes);
        flushIndexes(store);
        saveRecords(store, {updated(person, {{"First", text("Ida Müller")}})}, 2); // waits for others
        file_ = store.file();
        sound_ = store.check().empty();
    }
    void plant(const char* sql) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file_.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        EXPECT_GT(sqlite3_total_changes(database), 0) << "nothing was damaged";
        sqlite3_close(database);
    }
    std::filesystem::path file_;
    bool sound_ = false;
};

TEST_P(CheckTest, Finds) {
    ASSERT_TRUE(sound_);
    plant(GetParam().sql);
    const auto report = Store(folder()).check();
    EXPECT_THAT(report, testing::Contains(testing::HasSubstr(GetParam().found)));
    EXPECT_THAT(Store(folder(), Store::Access::readOnly).check(),
                testing::Contains(testing::HasSubstr(GetParam().found)));
}

INSTANTIATE_TEST_SUITE_P(
    Planted, CheckTest,
    testing::Values(
        Planted{"card", "UPDATE record SET card = x'00' || substr(card, 2) WHERE kind = 0", "checksum"},
        Planted{"shortCard", "UPDATE record SET card = x'0102' WHERE kind = 0", "end early"},
        Planted{"uid", "UPDATE record SET uid = x'0102' WHERE kind = 0", "unique id has the wrong length"},
        Planted{"kind", "UPDATE record SET kind = 7 WHERE kind = 0", "neither person nor group"},
        Planted{"picture", "INSERT INTO picture(record, data) VALUES (77, x'00')",
                "pictures belong to no record"},
        Planted{"member", "UPDATE membership SET member = 77", "members of groups do not exist"},
        Planted{"parent", "UPDATE membership SET parent = 1", "memberships belong to no group"},
        Planted{"memberKind", "UPDATE membership SET kind = 1", "take a person for a group"},
        Planted{"cycle", "INSERT INTO membership VALUES (2, 9, 2, 1)", "contain themselves"},
        Planted{"definition", "UPDATE definition SET property = 999", "belong to no property"},
        Planted{"me", "UPDATE meta SET value = 'nobody' WHERE name = 'me'", "own card nobody does not exist"},
        Planted{"lostTerm", "DELETE FROM term WHERE exact = 'Friends'", "index (values) does not agree"},
        Planted{"wrongTerm", "UPDATE term SET exact = 'Foes' WHERE exact = 'Friends'",
                "index (values) does not agree"},
        Planted{"termNumber", "UPDATE term SET folded = folded + 1 WHERE type = 4",
                "(values) does not agree"},
        Planted{"termAsBytes", "UPDATE term SET folded = CAST(folded AS BLOB) WHERE exact = 'Friends'",
                "(values) does not agree"},
        Planted{"termLabel", "UPDATE term SET label = 1 WHERE exact = 'Friends'", "(values) does not agree"},
        Planted{"termKey", "UPDATE term SET key = '0' WHERE exact = 'Friends'", "(values) does not agree"},
        Planted{"termType", "UPDATE term SET type = 257 WHERE exact = 'Friends'", "(values) does not agree"},
        Planted{"termProperty", "UPDATE term SET property = 9 WHERE exact = 'Friends'",
                "(values) does not agree"},
        Planted{"termOfAnother", "UPDATE term SET record = 3 - record WHERE exact = 'Friends'",
                "(values) does not agree"},
        Planted{"lostEnding", "DELETE FROM term WHERE exact = 'sdneirF'", "index (values) does not agree"},
        Planted{"lostIndexOfEndings", "UPDATE property SET endings = NULL", "index (values) does not agree"},
        Planted{"emptyIndexOfEndings", "UPDATE property SET endings = 1 WHERE name = 'First'",
                "index (values) does not agree"},
        Planted{"strayTerm", "UPDATE term SET record = 77 WHERE exact = 'Friends'",
                "search index do not exist"},
        Planted{"trigram", "INSERT INTO trigram(rowid, text) VALUES (65540, 'abcd')",
                "index (text) does not agree"},
        Planted{"lostBacklog", "UPDATE change SET replaced = NULL", "index (values) does not agree"},
        Planted{"badBacklog", "UPDATE change SET replaced = x'0102' WHERE replaced IS NOT NULL",
                "the change log: "},
        Planted{"textOfAnother",
                "INSERT INTO trigram(trigram, rowid, text) SELECT 'delete', record * 65536 + property, "
                "char(31) || 'friends' || char(31) FROM term WHERE exact = 'Friends'; "
                "INSERT INTO trigram(rowid, text) SELECT (3 - record) * 65536 + property, "
                "char(31) || 'friends' || char(31) FROM term WHERE exact = 'Friends'",
                "index (text) does not agree"},
        Planted{"otherOrder", // the same trigrams
                "INSERT INTO trigram(trigram, rowid, text) SELECT 'delete', record * 65536 + property, "
                "char(31) || 'abcabdab' || char(31) FROM term WHERE exact = 'abcabdab'; "
                "INSERT INTO trigram(rowid, text) SELECT record * 65536 + property, "
                "char(31) || 'abdabcab' || char(31) FROM term WHERE exact = 'abcabdab'",
                "index (text) does not agree"},
        Planted{"lostText", "DELETE FROM trigram_data WHERE id > 10", "amaged"}),
    [](const auto& planted) { return std::string(planted.param.name); });

using SoundBookTest = CheckTest;

// Another store saves more and more meanwhile.
TEST_F(SoundBookTest, TakesNoSaveOfOthersForDamage) {
    std::atomic<bool> done = false;
    std::thread other([&] {
        Store store(folder());
        while (!done) {
            addPerson(store, {{"First", text("Eve")}, {"Note", text("comes later")}});
        }
    });
    std::size_t people = 0;
    for (int i = 0; i < 30; ++i) {
        const Store store(folder(), i % 2 == 0 ? Store::Access::readOnly : Store::Access::readWrite);
        EXPECT_THAT(store.check(), testing::IsEmpty());
        people = store.rows(Kind::person).size();
    }
    done = true;
    other.join();
    EXPECT_GT(people, 30U) << "hardly anything was saved meanwhile";
}

using DamageTest = CheckTest;

TEST_F(DamageTest, IsReportedByReading) {
    plant("UPDATE record SET card = x'00' || substr(card, 2) WHERE kind = 0");
    Store store(folder());
    try {
        store.values(store.rows(Kind::person).front());
        ADD_FAILURE() << "read a damaged card";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
    }
}

// Indexes made by another version of Unicode's rules are made again when the book is opened for writing.
TEST_F(DamageTest, OfTheIndexesIsMendedWhenTheirUnicodeIsAnother) {
    plant("UPDATE meta SET value = '1.0.0' WHERE name = 'unicode'; DELETE FROM term; "
          "INSERT INTO trigram(rowid, text) VALUES (65540, 'abcd')");
    EXPECT_FALSE(Store(folder(), Store::Access::readOnly).check().empty());
    Store store(folder());
    EXPECT_THAT(store.check(), testing::IsEmpty());
    EXPECT_EQ(found(store, query("First", Comparison::suffixMatchCaseInsensitive, text("MÜLLER"))).size(),
              1U);
    EXPECT_EQ(found(store, query("First", Comparison::equal, text("Ida Müller"))).size(), 1U);
}

long peakMegabytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// The first list of places in each leaf claims 512 MB.
TEST_F(DamageTest, OfTheTextIndexThatClaimsMuchMemoryIsReportedWithoutUsingIt) {
    plant("UPDATE trigram_data SET block = substr(block, 1, 12) || x'8480808000' || substr(block, 18) "
          "WHERE id > 10");
    const long before = peakMegabytes();
    EXPECT_THAT(Store(folder()).check(), testing::Contains(testing::HasSubstr("amaged")));
    EXPECT_LT(peakMegabytes() - before, 256);
}

} // namespace
} // namespace addressbook::test
