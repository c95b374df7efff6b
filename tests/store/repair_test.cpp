// What a repair keeps, and what it says is lost, when tables and their indexes disagree.

#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"
#include "tests/store/stopping.h"

#include <gmock/gmock.h>

#include <fstream>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class RepairTest : public Scratch {
  protected:
    // A group of Ann and Bob, and Cid in none.
    RepairTest() {
        Store store(folder());
        ChangeSet changes = changesAt(1);
        changes.records = {inserted(ann_, {{"First", text("Ann")}}), inserted(bob_, {{"First", text("Bob")}}),
                           inserted(cid_, {{"First", text("Cid")}}),
                           inserted(group_, {{"GroupName", text("Friends")}}, Kind::group)};
        changes.memberships = {{group_, bob_, true}, {group_, ann_, true}};
        store.save(changes);
    }
    fs::path file() const { return folder() / kFileName; }
    // Repairs, and expects a sound book.
    RepairReport repaired() const {
        const RepairReport report = repair(folder());
        EXPECT_TRUE(report.needed);
        EXPECT_THAT(Store(folder()).check(), IsEmpty());
        return report;
    }
    static Value firstOf(const Store& store, const std::string& uid) {
        const auto record = store.find(uid);
        return record ? store.value(record->row, "First") : Value();
    }
    void damageACard() const {
        execute(file(), "UPDATE record SET card = x'00' || substr(card, 2) WHERE id = 3");
    }

    const std::string ann_ = newUid(Kind::person), bob_ = newUid(Kind::person), cid_ = newUid(Kind::person),
                      group_ = newUid(Kind::group);
};

TEST_F(RepairTest, ASecondRecordOfAnIdIsLeftOut) {
    execute(file(), "DELETE FROM record WHERE id = 3");
    executeUnnoticed(file(), "record", "sqlite_autoindex_record_1",
                     "INSERT INTO record SELECT 3, kind, uid, creation, modification, card FROM record "
                     "WHERE id = 1");
    EXPECT_THAT(repaired().lost, Contains("A second record " + ann_ + " is left out."));
    const Store store(folder());
    EXPECT_EQ(store.count(Kind::person), 2);
    EXPECT_EQ(firstOf(store, ann_), text("Ann"));
    EXPECT_EQ(firstOf(store, bob_), text("Bob"));
}

TEST_F(RepairTest, AnIdThatOnlyItsIndexStillHasIsKept) {
    executeUnnoticed(
        file(), "record", "sqlite_autoindex_record_1",
        "UPDATE record SET uid = 'other' WHERE id = 3; UPDATE record SET uid = x'0102' WHERE id = 2");
    EXPECT_THAT(repaired().lost, ElementsAre(cid_ + " had a damaged unique id, other."));
    const Store store(folder());
    EXPECT_EQ(firstOf(store, cid_), text("Cid"));
    EXPECT_EQ(firstOf(store, bob_), text("Bob"));
    EXPECT_FALSE(store.find("other"));
}

TEST_F(RepairTest, IdsOfOthersStayAsTheyAre) {
    {
        Store store(folder());
        saveRecords(store, {inserted("given by another", {{"First", text("Dan")}})});
    }
    damageACard();
    EXPECT_THAT(repaired().lost, ElementsAre(HasSubstr(cid_ + " is damaged")));
    EXPECT_EQ(firstOf(Store(folder()), "given by another"), text("Dan"));
}

TEST_F(RepairTest, WhatARecordIsItsIdTells) {
    execute(file(), "UPDATE record SET kind = 7");
    repaired();
    const Store store(folder());
    EXPECT_EQ(store.count(Kind::person), 3);
    EXPECT_EQ(store.count(Kind::group), 1);
    EXPECT_EQ(store.find(group_)->kind, Kind::group);
    EXPECT_THAT(store.members(store.find(group_)->row), SizeIs(2));
}

TEST_F(RepairTest, MembersThatOnlyTheIndexHasComeLast) {
    executeUnnoticed(file(), "membership", "membership_member", "DELETE FROM membership WHERE place = 1");
    EXPECT_THAT(repaired().lost, ElementsAre("Groups may have lost members, or their order."));
    EXPECT_THAT(contentsOf(Store(folder())).members[group_], ElementsAre(ann_, bob_));
}

// The log is there as long as another program has the book open.
TEST_F(RepairTest, ASaveThatCannotBeReadLeavesTheOnesBefore) {
    const Store other(folder());
    execute(file(), "PRAGMA writable_schema = ON; DELETE FROM sqlite_schema WHERE tbl_name = 'record'");
    EXPECT_THAT(repaired().lost, ElementsAre("The changes that were only in the log cannot be read."));
    EXPECT_TRUE(other.moved());
    EXPECT_EQ(firstOf(Store(folder()), ann_), text("Ann"));
}

// Whatever table the damage takes away, the others are rescued.
TEST_F(RepairTest, ATableMayBeGone) {
    const std::string before = bytesOf(file());
    for (const char* table : {"picture", "property", "definition", "term", "trigram", "membership", "change",
                              "meta", "deleted", "account", "collection", "link", "conflict"}) {
        SCOPED_TRACE(table);
        std::ofstream(file(), std::ios::binary) << before;
        const std::string name = table;
        execute(file(),
                "PRAGMA writable_schema = ON; DELETE FROM sqlite_schema WHERE tbl_name LIKE '" + name + "%'");
        const RepairReport report = repaired();
        const Contents now = contentsOf(Store(folder()));
        EXPECT_THAT(now.records, SizeIs(4));
        EXPECT_EQ(report.people, 3);
        EXPECT_EQ(report.groups, 1);
        EXPECT_EQ(now.members.empty(), name == "membership");
    }
}

TEST_F(RepairTest, MakesTheIndexesOfEndingsAnew) {
    const NamedProperty first{Kind::person, "First"};
    const NamedProperty theirs{Kind::group, "GroupName"};
    {
        Store store(folder());
        ChangeSet changes;
        changes.endings = {theirs, first};
        store.save(changes);
    }
    damageACard();
    repaired();
    const Store store(folder());
    EXPECT_THAT(store.endings(), ElementsAre(first, theirs));
    EXPECT_THAT(found(store, query("First", Comparison::suffixMatch, text("b"))), ElementsAre(bob_));
}

TEST_F(RepairTest, NothingIsChangedWhenNothingCanBeRead) {
    const std::string bytes(fs::file_size(file()), '\xEE');
    std::ofstream(file(), std::ios::binary) << bytes;
    try {
        repair(folder());
        ADD_FAILURE() << "repaired";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::damaged);
        EXPECT_THAT(error.what(),
                    testing::AllOf(HasSubstr(file().string() + " cannot be repaired, no record in it"),
                                   HasSubstr("restore it from a backup.")));
    }
    EXPECT_TRUE(bytesOf(file()) == bytes);
    EXPECT_THAT(filesIn(folder()), ElementsAre(kFileName)) << "something is left beside the file";
}

// Long work says how far it is: never back, never beyond its end, and often.
TEST_F(RepairTest, TellsItsProgress) {
    {
        Store store(folder());
        std::vector<RecordChange> records;
        for (int i = 0; i < 200; ++i) {
            records.push_back(inserted(newUid(Kind::person), {{"First", text(std::to_string(i))}}));
        }
        saveRecords(store, records);
    }
    damageACard();
    std::vector<double> told;
    EXPECT_TRUE(repair(folder(), [&](double part) { told.push_back(part); }).needed);
    EXPECT_GT(told.size(), 8U);
    EXPECT_LT(told.size(), 100U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_GE(told.front(), 0);
    EXPECT_LT(told.front(), 0.1);
    EXPECT_GT(told.back(), 0.9);
    EXPECT_LE(told.back(), 1);
}

// So may its user: nothing is changed then.
TEST_F(RepairTest, IsStopped) {
    damageACard();
    const std::string bytes = bytesOf(file());
    EXPECT_GT(
        stopEverywhere([&](const Progress& progress) { EXPECT_TRUE(repair(folder(), progress).needed); },
                       [&] {
                           EXPECT_TRUE(bytesOf(file()) == bytes);
                           EXPECT_THAT(filesIn(folder()), Each(StartsWith(kFileName))) << "something is left";
                       }),
        2);
    EXPECT_THAT(Store(folder()).check(), IsEmpty());
}

// What is noted for servers.
class RepairSyncTest : public RepairTest {
  protected:
    RepairSyncTest() {
        Store store(folder());
        ChangeSet changes;
        changes.sync.accounts = {
            {0, "https://x.example/", "ida", "work", PasswordSource::none, "", "", false}};
        changes.sync.collections = {{0, 0, "https://x.example/ida/", "Work", "s", 0, true}};
        collection_ = store.save(changes).collections.at(0);
        ChangeSet more;
        more.sync.links = {{collection_, "/1", ann_, "\"e\"", "one", false},
                           {collection_, "/2", bob_, "\"e\"", "two", false}};
        more.sync.conflicts = {{0, ann_, "Note", "home", text("mine"), Date{1.5}, true}};
        store.save(more);
        conflicts_ = store.syncConflicts();
    }
    static constexpr const char* kNotAll =
        "Not all that was agreed with servers can be read; the next sync compares all cards.";
    std::int64_t collection_ = 0;
    std::vector<SyncConflict> conflicts_;
};

TEST_F(RepairSyncTest, KeepsConflictsWithTheirTimes) {
    damageACard();
    EXPECT_THAT(repaired().lost, ElementsAre(HasSubstr(cid_)));
    const Store store(folder());
    EXPECT_EQ(store.syncConflicts(), conflicts_);
    EXPECT_EQ(store.syncConflicts().at(0).time, Date{1.5});
    EXPECT_EQ(store.syncLink(collection_, "/1")->text, "one");
}

TEST_F(RepairSyncTest, SaysThatALinkIsLost) {
    executeUnnoticed(file(), "link", "none", "UPDATE link SET etag = NULL WHERE href = '/2'", " NOT NULL");
    EXPECT_THAT(repaired().lost, ElementsAre(kNotAll));
    const Store store(folder());
    EXPECT_EQ(store.syncLink(collection_, "/1")->text, "one");
    EXPECT_EQ(store.syncLink(collection_, "/2"), std::nullopt);
}

TEST_F(RepairSyncTest, SaysThatAllLinksAreLost) {
    execute(file(), "PRAGMA writable_schema = ON; DELETE FROM sqlite_schema WHERE tbl_name = 'link'");
    EXPECT_THAT(repaired().lost, ElementsAre(kNotAll));
    const Store store(folder());
    EXPECT_THAT(store.syncAccounts(), SizeIs(1));
    EXPECT_THAT(store.syncLinksOf(ann_), IsEmpty());
    EXPECT_EQ(firstOf(store, ann_), text("Ann"));
}

TEST_F(RepairSyncTest, SaysNothingOfServersInAnOlderBook) {
    execute(file(), downgradeTo(5));
    damageACard();
    // Without its table of changes it is not brought up to date before it is repaired.
    execute(file(), "PRAGMA writable_schema = ON; DELETE FROM sqlite_schema WHERE tbl_name = 'change'");
    EXPECT_THAT(repaired().lost, ElementsAre(HasSubstr(cid_ + " is damaged")));
}

} // namespace
} // namespace addressbook::test
