// The effects of a save, alone and with other stores on the same folder.

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class SaveTest : public Scratch {
  protected:
    Value valueOf(const Store& from, const std::string& uid, std::string_view property) const {
        const auto record = from.find(uid);
        return record ? from.value(record->row, property) : Value();
    }
    void expectRefused(const ChangeSet& changes) {
        const auto before = store_.rows(Kind::person);
        const auto last = store_.lastChange();
        try {
            store_.save(changes);
            FAIL() << "was not refused";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::refused) << error.what();
            EXPECT_THAT(error.what(), testing::HasSubstr(store_.file().string()));
        }
        EXPECT_EQ(store_.rows(Kind::person), before);
        EXPECT_EQ(store_.lastChange(), last);
        EXPECT_THAT(store_.check(), IsEmpty());
    }

    Store store_{folder()};
};

TEST_F(SaveTest, AnEmptyOneWritesNothing) {
    const SaveResult result = store_.save(ChangeSet());
    EXPECT_EQ(result.change, 0);
    EXPECT_EQ(store_.lastChange(), 0);
}

TEST_F(SaveTest, WritesOnlyTheChangedPropertiesAndTheDate) {
    const std::string uid =
        addPerson(store_, {{"First", text("Ada")}, {"Note", text("n")}, {"Creation", Date{-5}}});
    const SaveResult result =
        saveRecords(store_, {updated(uid, {{"First", text("Eve")}, {"Last", text("L")}})}, 7);
    EXPECT_THAT(result.updated, ElementsAre(uid));
    EXPECT_THAT(result.inserted, IsEmpty());
    EXPECT_EQ(store_.values(store_.find(uid)->row), (Values{{"First", text("Eve")},
                                                            {"Last", text("L")},
                                                            {"Note", text("n")},
                                                            {"UID", uid},
                                                            {"Creation", Date{-5}},
                                                            {"Modification", Date{7}}}));
    saveRecords(store_, {updated(uid, {{"First", Value()}, {"Creation", Date{1}}, {"UID", text("x")}})}, 8);
    EXPECT_EQ(store_.values(store_.find(uid)->row), (Values{{"Last", text("L")},
                                                            {"Note", text("n")},
                                                            {"UID", uid},
                                                            {"Creation", Date{-5}},
                                                            {"Modification", Date{8}}}));
    EXPECT_THAT(found(store_, query("First", Comparison::equal, Value())), IsEmpty());
    EXPECT_THAT(found(store_, query("Modification", Comparison::equal, Date{8})), ElementsAre(uid));
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SaveTest, TwoStoresThatChangeDifferentPropertiesBothWin) {
    const std::string uid = addPerson(store_, {{"First", text("a")}, {"Last", text("b")}});
    Store other(folder());
    EXPECT_EQ(valueOf(other, uid, "Last"), text("b"));
    saveRecords(store_, {updated(uid, {{"First", text("first")}})}, 2);
    saveRecords(other, {updated(uid, {{"Last", text("last")}})}, 3);
    EXPECT_EQ(valueOf(store_, uid, "First"), text("first"));
    EXPECT_EQ(valueOf(store_, uid, "Last"), text("last"));
    saveRecords(store_, {updated(uid, {{"Last", text("again")}})}, 4);
    EXPECT_EQ(valueOf(other, uid, "Last"), text("again")); // on the same property the last one wins
}

TEST_F(SaveTest, ARecordDeletedElsewhereIsReportedAndTheRestKept) {
    const std::string gone = addPerson(store_, {});
    const std::string kept = addPerson(store_, {});
    Store other(folder());
    ChangeSet removal;
    removal.removed = {gone};
    other.save(removal);
    ChangeSet changes = changesAt(3);
    const std::string group = newUid(Kind::group);
    changes.records = {updated(gone, {{"First", text("x")}}), inserted(group, {}, Kind::group),
                       updated(kept, {{"First", text("y")}})};
    changes.memberships = {{group, gone, true}, {group, kept, true}, {"no such group", kept, true}};
    changes.me = gone;
    const SaveResult result = store_.save(changes);
    EXPECT_THAT(result.missing, ElementsAre(gone, "no such group"));
    EXPECT_THAT(result.updated, ElementsAre(kept));
    EXPECT_EQ(valueOf(store_, kept, "First"), text("y"));
    EXPECT_FALSE(store_.find(gone));
    EXPECT_FALSE(store_.me());
    EXPECT_THAT(store_.members(store_.find(group)->row), ElementsAre(store_.find(kept)->row));
    const SaveResult nothing = saveRecords(store_, {updated(gone, {})}, 4);
    EXPECT_EQ(nothing.change, 0);
}

TEST_F(SaveTest, ARemovedRecordLeavesNothingBehind) {
    const std::string person =
        addPerson(store_, {{"First", text("Ada")}, {".Image", Bytes{1}}, {"Phone", MultiValue{}}});
    const std::string group = newUid(Kind::group);
    ChangeSet changes = changesAt(2);
    changes.records = {inserted(group, {}, Kind::group)};
    changes.memberships = {{group, person, true}};
    changes.me = person;
    store_.save(changes);
    EXPECT_EQ(store_.me(), person);
    const RowId row = store_.find(person)->row;
    ChangeSet removal = changesAt(3);
    removal.removed = {person, "never there"};
    removal.records = {updated(person, {{"First", text("late")}})};
    const SaveResult result = store_.save(removal);
    EXPECT_THAT(result.deleted, ElementsAre(person));
    EXPECT_THAT(result.missing, IsEmpty());
    EXPECT_FALSE(store_.me());
    EXPECT_FALSE(store_.find(row));
    EXPECT_TRUE(store_.values(row).empty());
    EXPECT_EQ(store_.value(row, property::kImage), Value());
    EXPECT_THAT(store_.members(store_.find(group)->row), IsEmpty());
    EXPECT_THAT(found(store_, query("First", Comparison::containsSubStringCaseInsensitive, text("ada"))),
                IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
    addPerson(store_, {});
    EXPECT_GT(store_.rows(Kind::person).back(), row) << "a row's number was used again";
}

TEST_F(SaveTest, MembershipsKeepTheOrderOfJoining) {
    std::vector<std::string> people;
    for (int i = 0; i < 4; ++i) {
        people.push_back(addPerson(store_, {}));
    }
    const std::string outer = newUid(Kind::group);
    const std::string inner = newUid(Kind::group);
    ChangeSet changes = changesAt(2);
    changes.records = {inserted(outer, {}, Kind::group), inserted(inner, {}, Kind::group)};
    for (const int i : {2, 0, 3}) {
        changes.memberships.push_back({outer, people[static_cast<std::size_t>(i)], true});
    }
    changes.memberships.push_back({outer, inner, true});
    changes.memberships.push_back({inner, people[2], true});
    store_.save(changes);
    const auto row = [&](const std::string& uid) { return store_.find(uid)->row; };
    EXPECT_THAT(store_.members(row(outer)), ElementsAre(row(people[2]), row(people[0]), row(people[3])));
    EXPECT_THAT(store_.subgroups(row(outer)), ElementsAre(row(inner)));
    EXPECT_THAT(store_.parents(row(people[2])), ElementsAre(row(outer), row(inner)));
    EXPECT_THAT(store_.parents(row(inner)), ElementsAre(row(outer)));

    ChangeSet moves = changesAt(5);
    moves.memberships = {{outer, people[2], false}, {outer, people[2], true}, {outer, people[0], true}};
    EXPECT_THAT(store_.save(moves).updated, ElementsAre(outer));
    EXPECT_THAT(store_.members(row(outer)), ElementsAre(row(people[0]), row(people[3]), row(people[2])));
    EXPECT_EQ(valueOf(store_, outer, "Modification"), Value(Date{5}));
    EXPECT_EQ(valueOf(store_, inner, "Modification"), Value(Date{2}));
    ChangeSet same = changesAt(6);
    same.memberships = {{outer, people[0], true}, {inner, people[0], false}};
    EXPECT_EQ(store_.save(same).change, 0);
}

TEST_F(SaveTest, AMembershipThatWouldMakeACircleIsReportedAndTheRestKept) {
    const std::string person = addPerson(store_, {});
    const std::string outer = newUid(Kind::group);
    const std::string middle = newUid(Kind::group);
    const std::string inner = newUid(Kind::group);
    ChangeSet changes = changesAt(2);
    for (const std::string& uid : {outer, middle, inner}) {
        changes.records.push_back(inserted(uid, {}, Kind::group));
    }
    changes.memberships = {{outer, middle, true}, {middle, inner, true}};
    store_.save(changes);
    changes = changesAt(3);
    changes.records = {updated(person, {{"First", text("kept")}})};
    changes.memberships = {{inner, outer, true}, {inner, person, true}, {outer, outer, true}};
    const SaveResult result = store_.save(changes);
    ASSERT_EQ(result.circular.size(), 2U);
    EXPECT_EQ(result.circular[0].group, inner);
    EXPECT_EQ(result.circular[0].member, outer);
    EXPECT_EQ(result.circular[1].member, outer);
    EXPECT_THAT(result.updated, UnorderedElementsAre(person, inner));
    EXPECT_EQ(valueOf(store_, person, "First"), text("kept"));
    EXPECT_THAT(store_.members(store_.find(inner)->row), ElementsAre(store_.find(person)->row));
    EXPECT_THAT(store_.subgroups(store_.find(inner)->row), IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
    changes = changesAt(4);
    changes.memberships = {{inner, outer, true}};
    EXPECT_EQ(store_.save(changes).change, 0); // nothing was written, and nobody is told of a change
}

TEST_F(SaveTest, GroupsChangePlacesInWhateverOrderTheyAreTold) {
    const std::string outer = newUid(Kind::group);
    const std::string inner = newUid(Kind::group);
    ChangeSet changes = changesAt(2);
    changes.records = {inserted(outer, {}, Kind::group), inserted(inner, {}, Kind::group)};
    changes.memberships = {{outer, inner, true}};
    store_.save(changes);
    changes = changesAt(3);
    changes.memberships = {{inner, outer, true}, {outer, inner, false}};
    EXPECT_THAT(store_.save(changes).updated, testing::UnorderedElementsAre(outer, inner));
    EXPECT_THAT(store_.subgroups(store_.find(inner)->row), ElementsAre(store_.find(outer)->row));
    EXPECT_TRUE(store_.subgroups(store_.find(outer)->row).empty());
}

TEST_F(SaveTest, WhatIsRefusedChangesNothing) {
    const std::string uid = addPerson(store_, {});
    ChangeSet changes = changesAt(2);
    changes.records = {inserted(newUid(Kind::person), {{"First", text("x")}, {"new name", text("y")}}),
                       inserted(uid, {})};
    expectRefused(changes);
    changes.records = {inserted(newUid(Kind::person), {{"First", text("x")}}),
                       updated(uid, {{".Image", text("x")}})};
    expectRefused(changes);
    Value deep;
    for (int i = 0; i < 100; ++i) {
        deep = Array{deep};
    }
    changes.records = {updated(uid, {{"First", text("x")}, {"Note", deep}})};
    expectRefused(changes);
    changes.records = {updated(uid, {{"First", text("x")}})};
    for (const PropertyDefinition& definition :
         {PropertyDefinition{Kind::person, "First", 1}, PropertyDefinition{Kind::group, ".own", 1}}) {
        changes.definitions = {definition};
        expectRefused(changes);
    }
    EXPECT_EQ(valueOf(store_, uid, "First"), Value());
    const std::string later = addPerson(store_, {{"new name", text("y")}});
    EXPECT_THAT(found(store_, query("new name", Comparison::equal, text("y"))), ElementsAre(later));
}

TEST_F(SaveTest, CustomPropertiesComeAndGoWithTheirValues) {
    const PropertyDefinition own{Kind::person, "own", 1};
    const PropertyDefinition list{Kind::person, "list", 257};
    const PropertyDefinition ofGroups{Kind::group, "own", 2};
    ChangeSet changes = changesAt(1);
    changes.definitions = {own, list, ofGroups, {Kind::person, "own", 3}};
    store_.save(changes);
    EXPECT_THAT(store_.definitions(), ElementsAre(own, list, ofGroups));
    const std::string uid =
        addPerson(store_, {{"own", text("Wert")}, {"list", MultiValue{}}, {"First", text("f")}});
    ChangeSet removal = changesAt(9);
    removal.removedDefinitions = {own, list, {Kind::person, "never", 1}};
    const SaveResult result = store_.save(removal);
    EXPECT_THAT(result.updated, ElementsAre(uid));
    EXPECT_THAT(store_.definitions(), ElementsAre(ofGroups));
    EXPECT_EQ(store_.values(store_.find(uid)->row),
              (Values{{"First", text("f")}, {"UID", uid}, {"Creation", Date{1}}, {"Modification", Date{9}}}));
    EXPECT_THAT(found(store_, query("own", Comparison::containsSubStringCaseInsensitive, text("WERT"))),
                IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SaveTest, ABookHasRoomForSoManyNamesOfProperties) {
    const std::string uid = addPerson(store_, {}); // the names that every record has
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(store_.file().c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database,
                           "INSERT INTO property(id, kind, name) VALUES (65534, 1, 'the last but one')",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(database);
    ChangeSet changes = changesAt(2);
    changes.records = {updated(uid, {{"the last", text("x")}})};
    store_.save(changes);
    changes.records = {updated(uid, {{"one more", text("x")}})};
    expectRefused(changes);
    changes.records = {updated(uid, {{"the last", text("y")}})};
    store_.save(changes);
    EXPECT_EQ(valueOf(store_, uid, "the last"), text("y"));
}

TEST_F(SaveTest, TheChangeLogTellsWhatEachSaveDid) {
    Store other(folder());
    EXPECT_EQ(other.lastChange(), 0);
    const std::string first = addPerson(store_, {});
    const std::string second = addPerson(store_, {});
    ChangeSet changes = changesAt(4);
    changes.records = {updated(first, {{"First", text("x")}})};
    changes.removed = {second};
    const SaveResult result = store_.save(changes);
    EXPECT_EQ(other.lastChange(), result.change);
    const auto log = other.changesSince(0);
    ASSERT_EQ(log.size(), 3U);
    EXPECT_THAT(log[0].inserted, ElementsAre(first));
    EXPECT_THAT(log[1].inserted, ElementsAre(second));
    EXPECT_THAT(log[2].updated, ElementsAre(first));
    EXPECT_THAT(log[2].deleted, ElementsAre(second));
    EXPECT_EQ(log[2].change, result.change);
    EXPECT_EQ(other.changesSince(result.change - 1).size(), 1U);
    EXPECT_TRUE(other.changesSince(result.change).empty());
}

TEST_F(SaveTest, ALogThatNoLongerReachesBackSaysThatAnythingMayHaveChanged) {
    const std::string uid = addPerson(store_, {});
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(store_.file().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "UPDATE sqlite_sequence SET seq = 5000 WHERE name = 'change'", nullptr, nullptr,
                 nullptr);
    sqlite3_close(database);
    saveRecords(store_, {updated(uid, {{"First", text("x")}})}, 3);
    const auto log = store_.changesSince(1);
    ASSERT_EQ(log.size(), 2U);
    EXPECT_TRUE(log[0].inserted.empty() && log[0].updated.empty() && log[0].deleted.empty());
    EXPECT_EQ(log[0].change, 5000);
    EXPECT_THAT(log[1].updated, ElementsAre(uid));
}

TEST_F(SaveTest, TheLogOfLargeSavesStaysSmall) {
    constexpr std::size_t kLength = 20'000;
    std::size_t size = 0;
    for (int save = 0; save < 10; ++save) {
        std::vector<RecordChange> records;
        for (int i = 0; i < 100; ++i) {
            records.push_back(inserted(newUid(Kind::person) + std::string(kLength, 'x'), {}));
        }
        saveRecords(store_, std::move(records));
    }
    const auto log = store_.changesSince(0);
    for (const LoggedChange& change : log) {
        size += change.inserted.size() * kLength;
    }
    EXPECT_TRUE(log.front().tellsNothing());
    EXPECT_LT(size, 16U << 20);
    EXPECT_GT(size, 12U << 20);
    EXPECT_EQ(log.back().change, 10);
    EXPECT_TRUE(log.back().own);
}

TEST_F(SaveTest, IsRefusedWhenTheFileIsNoLongerThere) {
    const std::string uid = addPerson(store_, {});
    const auto aside = folder() / "aside";
    std::filesystem::rename(store_.file(), aside);
    EXPECT_TRUE(store_.moved());
    try {
        saveRecords(store_, {updated(uid, {{"First", text("x")}})});
        ADD_FAILURE() << "was saved";
    } catch (const StoreError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(store_.file().string()));
    }
    std::filesystem::rename(aside, store_.file());
    EXPECT_FALSE(store_.moved());
    saveRecords(store_, {updated(uid, {{"First", text("x")}})});
    EXPECT_EQ(valueOf(store_, uid, "First"), text("x"));
}

TEST_F(SaveTest, MeIsSetAndCleared) {
    const std::string uid = addPerson(store_, {});
    ChangeSet changes;
    changes.me = uid;
    EXPECT_NE(store_.save(changes).change, 0);
    EXPECT_EQ(store_.me(), uid);
    changes.me = "";
    store_.save(changes);
    EXPECT_FALSE(store_.me());
    EXPECT_EQ(store_.save(changes).change, 0);
}

TEST_F(SaveTest, WaitsForAnotherWriterOnlySoLong) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(store_.file().c_str(), &database), SQLITE_OK);
    Store hasty(folder(), Store::Access::readWrite, std::chrono::milliseconds(20));
    ASSERT_EQ(sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    const std::string uid = newUid(Kind::person);
    try {
        saveRecords(hasty, {inserted(uid, {{"p", text("x")}})});
        ADD_FAILURE() << "saved under another's lock";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::locked);
        EXPECT_THAT(error.what(), testing::HasSubstr(hasty.file().string()));
    }
    EXPECT_FALSE(hasty.find(uid));
    sqlite3_exec(database, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    saveRecords(hasty, {inserted(uid, {{"p", text("x")}})});
    EXPECT_TRUE(store_.find(uid));
}

} // namespace
} // namespace addressbook::test
