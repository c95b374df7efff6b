// Reading many records at once, and at one moment.

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace addressbook::test {
namespace {

class ReadTest : public Scratch {
  protected:
    // Runs SQL on the file.
    static void sql(const std::filesystem::path& file, const char* statement) {
        sqlite3* database = nullptr;
        EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, statement, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    Store store{folder()};
};

TEST_F(ReadTest, ARecordAndThoseBehindIt) {
    std::vector<std::string> uids;
    for (const char* name : {"Ann", "Bob", "Cid", "Dan"}) {
        uids.push_back(addPerson(store, {{"First", text(name)}, {"Note", text("n")}}));
    }
    ChangeSet removal = changesAt(2);
    removal.removed = {uids[1]};
    store.save(removal);

    const auto records = store.readFrom(store.find(uids[0])->row, 2);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].uid, uids[0]);
    EXPECT_EQ(records[1].uid, uids[2]);
    EXPECT_EQ(store.value(records[1], "First"), text("Cid"));
    EXPECT_EQ(store.value(records[1], "UID"), Value(uids[2]));
    EXPECT_EQ(store.value(records[1], "Last"), Value());
    EXPECT_EQ(store.values(records[1]), store.values(records[1].id));
    EXPECT_EQ(store.readFrom(records[1].id, 10).size(), 2U);
    EXPECT_EQ(store.read(uids[3])->id, store.read(store.find(uids[3])->row)->id);
    EXPECT_FALSE(store.read(uids[1]));
    EXPECT_EQ(store.values(RecordRow()), Values());
    EXPECT_EQ(store.value(RecordRow(), "First"), Value());
}

TEST_F(ReadTest, ADamagedRecordLeavesItsNeighboursReadable) {
    const std::string sound = addPerson(store, {{"First", text("Ann")}});
    const std::string hurt = addPerson(store, {{"First", text("Bob")}});
    sql(store.file(), "UPDATE record SET card = substr(card, 1, length(card) - 1) || x'7a' WHERE id = 2");
    const auto records = store.readFrom(store.find(sound)->row, 10);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(store.value(records[0], "First"), text("Ann"));
    for (int twice = 0; twice < 2; ++twice) {
        try {
            store.value(records[1], "First");
            FAIL() << "the damage was not noticed";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
        }
    }
}

TEST_F(ReadTest, OneMomentForAsLongAsItLasts) {
    const std::string uid = addPerson(store, {{"First", text("Ann")}});
    Store other(folder());
    {
        const Store::ReadTransaction outer(store);
        const Store::ReadTransaction inner(store);
        EXPECT_EQ(store.value(*store.read(uid), "First"), text("Ann"));
        saveRecords(other, {updated(uid, {{"First", text("Bea")}})});
        EXPECT_EQ(store.value(*store.read(uid), "First"), text("Ann"));
        EXPECT_TRUE(found(store, query("First", Comparison::equal, text("Bea"))).empty());
    }
    EXPECT_EQ(store.value(*store.read(uid), "First"), text("Bea"));
    saveRecords(store, {updated(uid, {{"First", text("Cid")}})});
    EXPECT_EQ(other.value(*other.read(uid), "First"), text("Cid"));
}

} // namespace
} // namespace addressbook::test
