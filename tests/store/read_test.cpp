// Reading many records at once, and at one moment.

#include "frameworks/AddressBook/store/record_codec.h"
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

    Store store_{folder()};
};

TEST_F(ReadTest, ARecordAndThoseBehindIt) {
    std::vector<std::string> uids;
    for (const char* name : {"Ann", "Bob", "Cid", "Dan"}) {
        uids.push_back(addPerson(store_, {{"First", text(name)}, {"Note", text("n")}}));
    }
    ChangeSet removal = changesAt(2);
    removal.removed = {uids[1]};
    store_.save(removal);

    const auto records = store_.readFrom(store_.find(uids[0])->row, 2);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].uid.text(), uids[0]);
    EXPECT_EQ(records[1].uid.text(), uids[2]);
    EXPECT_EQ(store_.value(records[1], "First"), text("Cid"));
    EXPECT_EQ(store_.value(records[1], "UID"), Value(uids[2]));
    EXPECT_EQ(store_.value(records[1], "Last"), Value());
    EXPECT_EQ(store_.values(records[1]), store_.values(records[1].id));
    EXPECT_EQ(store_.readFrom(records[1].id, 10).size(), 2U);
    EXPECT_EQ(store_.read(uids[3])->id, store_.read(store_.find(uids[3])->row)->id);
    EXPECT_FALSE(store_.read(uids[1]));
    EXPECT_EQ(store_.values(RecordRow()), Values());
    EXPECT_EQ(store_.value(RecordRow(), "First"), Value());
}

TEST_F(ReadTest, EncodedValuesAreThoseOfTheRecordOrItsDamage) {
    const std::string sound = addPerson(store_, {{"First", text("Ann")}});
    const std::string hurt = addPerson(store_, {{"First", text("Bob")}});
    sql(store_.file(), "UPDATE record SET card = substr(card, 1, length(card) - 1) || x'7a' WHERE id = 2");
    EXPECT_EQ(decodeValue(store_.encodedValue(*store_.read(sound), "First")), text("Ann"));
    EXPECT_EQ(store_.encodedValue(*store_.read(sound), "Last"), "");
    EXPECT_EQ(store_.encodedValue(RecordRow(), "First"), "");
    try {
        store_.encodedValue(*store_.read(hurt), "First");
        ADD_FAILURE() << "the damage was not noticed";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
        EXPECT_NE(std::string(error.what()).find("record 2: its checksum is wrong"), std::string::npos);
    }
    for (const char* property : {"UID", "Creation", "First", property::kImage.data()}) {
        EXPECT_EQ(store_.value(77, property), Value()) << property; // there is no such record
    }
}

TEST_F(ReadTest, ADamagedRecordLeavesItsNeighboursReadable) {
    const std::string sound = addPerson(store_, {{"First", text("Ann")}});
    const std::string hurt = addPerson(store_, {{"First", text("Bob")}});
    sql(store_.file(), "UPDATE record SET card = substr(card, 1, length(card) - 1) || x'7a' WHERE id = 2");
    const auto records = store_.readFrom(store_.find(sound)->row, 10);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(store_.value(records[0], "First"), text("Ann"));
    for (int twice = 0; twice < 2; ++twice) {
        try {
            store_.value(records[1], "First");
            FAIL() << "the damage was not noticed";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
        }
    }
}

TEST_F(ReadTest, OneMomentForAsLongAsItLasts) {
    const std::string uid = addPerson(store_, {{"First", text("Ann")}});
    Store other(folder());
    {
        const Store::ReadTransaction outer(store_);
        const Store::ReadTransaction inner(store_);
        EXPECT_EQ(store_.value(*store_.read(uid), "First"), text("Ann"));
        saveRecords(other, {updated(uid, {{"First", text("Bea")}})});
        EXPECT_EQ(store_.value(*store_.read(uid), "First"), text("Ann"));
        EXPECT_TRUE(found(store_, query("First", Comparison::equal, text("Bea"))).empty());
    }
    EXPECT_EQ(store_.value(*store_.read(uid), "First"), text("Bea"));
    saveRecords(store_, {updated(uid, {{"First", text("Cid")}})});
    EXPECT_EQ(other.value(*other.read(uid), "First"), text("Cid"));
}

} // namespace
} // namespace addressbook::test
