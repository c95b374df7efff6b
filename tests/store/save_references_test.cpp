// What one save says of records that it removes itself, that are of another kind, or that are not there.

#include "tests/store/behind_the_back.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class SaveReferencesTest : public Scratch {
  protected:
    SaveReferencesTest() { saveRecords(store_, {inserted(group_, {}, Kind::group)}); }

    Store store_{folder()};
    const std::string ann_ = addPerson(store_, {{"First", text("Ann")}});
    const std::string bob_ = addPerson(store_, {{"First", text("Bob")}});
    const std::string group_ = newUid(Kind::group);
};

TEST_F(SaveReferencesTest, WhatItRemovesIsNotMissed) {
    ChangeSet changes = changesAt(2);
    changes.removed = {group_, ann_};
    changes.memberships = {{group_, bob_, true}, {group_, ann_, false}};
    changes.records = {updated(ann_, {{"First", text("Anna")}})};
    changes.me = ann_;
    const SaveResult result = store_.save(changes);
    EXPECT_THAT(result.deleted, UnorderedElementsAre(group_, ann_));
    EXPECT_THAT(result.missing, IsEmpty());
    EXPECT_THAT(result.updated, IsEmpty());
    EXPECT_EQ(store_.me(), std::nullopt);
    EXPECT_THAT(store_.parents(store_.find(bob_)->row), IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SaveReferencesTest, ARemovedMemberIsNotMissed) {
    ChangeSet changes = changesAt(2);
    changes.removed = {ann_};
    changes.memberships = {{group_, ann_, true}, {group_, bob_, true}};
    const SaveResult result = store_.save(changes);
    EXPECT_THAT(result.missing, IsEmpty());
    EXPECT_THAT(store_.members(store_.find(group_)->row), ElementsAre(store_.find(bob_)->row));
}

TEST_F(SaveReferencesTest, APersonIsNoGroup) {
    ChangeSet changes = changesAt(2);
    changes.memberships = {{ann_, bob_, true}};
    EXPECT_THAT(store_.save(changes).missing, ElementsAre(ann_));
    EXPECT_THAT(store_.parents(store_.find(bob_)->row), IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SaveReferencesTest, WhoIsGoneNeedNotBeTakenOut) {
    ChangeSet changes = changesAt(2);
    changes.memberships = {{group_, "gone", false}};
    EXPECT_THAT(store_.save(changes).missing, IsEmpty());
    changes.memberships = {{group_, "gone", true}};
    EXPECT_THAT(store_.save(changes).missing, ElementsAre("gone"));
}

TEST_F(SaveReferencesTest, APropertyThatIsNotDefinedIsNotRemoved) {
    const std::int64_t before = store_.lastChange();
    ChangeSet changes = changesAt(2);
    changes.removedDefinitions = {{Kind::person, "First", 1}, {Kind::person, "never seen", 1}};
    EXPECT_EQ(store_.save(changes).change, 0);
    EXPECT_EQ(store_.lastChange(), before);
    EXPECT_EQ(store_.value(store_.find(ann_)->row, "First"), text("Ann"));
}

// The index of values tells which records lose one. Where it is wrong, so is nothing else.
TEST_F(SaveReferencesTest, APropertyGoesThoughTheIndexKnowsALostRecord) {
    ChangeSet changes = changesAt(2);
    changes.definitions = {{Kind::person, "own", 1}};
    changes.records = {updated(ann_, {{"own", text("1")}}), updated(bob_, {{"own", text("2")}})};
    store_.save(changes);
    flushIndexes(store_);
    execute(store_.file(), "DELETE FROM record WHERE id = 1");
    ChangeSet removal = changesAt(3);
    removal.removedDefinitions = changes.definitions;
    EXPECT_THAT(store_.save(removal).updated, ElementsAre(bob_));
    EXPECT_THAT(store_.definitions(), IsEmpty());
    EXPECT_EQ(store_.value(store_.find(bob_)->row, "own"), Value());
}

TEST_F(SaveReferencesTest, ADateOfCreationIsADate) {
    const std::string dated = newUid(Kind::person), odd = newUid(Kind::person);
    saveRecords(store_, {inserted(dated, {{"Creation", Date{5}}}), inserted(odd, {{"Creation", text("5")}})},
                9);
    EXPECT_EQ(store_.value(store_.find(dated)->row, "Creation"), Value(Date{5}));
    EXPECT_EQ(store_.value(store_.find(odd)->row, "Creation"), Value(Date{9}));
}

// A save of very many values updates the indexes in between, so as to take little memory.
TEST_F(SaveReferencesTest, ManyValuesInOneSaveAreFound) {
    constexpr int kRecords = 210, kValues = 100;
    std::vector<RecordChange> records;
    const auto valuesOf = [](int turn, int record) {
        Values values;
        for (int i = 0; i < kValues; ++i) {
            values["own " + std::to_string(i)] = text(std::to_string(turn) + "-" + std::to_string(record));
        }
        return values;
    };
    std::vector<std::string> uids;
    for (int i = 0; i < kRecords; ++i) {
        uids.push_back(newUid(Kind::person));
        records.push_back(inserted(uids.back(), valuesOf(1, i)));
    }
    saveRecords(store_, records);
    for (int i = 0; i < kRecords; ++i) {
        records[static_cast<std::size_t>(i)] = updated(uids[static_cast<std::size_t>(i)], valuesOf(2, i));
    }
    saveRecords(store_, records);
    EXPECT_THAT(found(store_, query("own 7", Comparison::equal, text("2-3"))), ElementsAre(uids[3]));
    EXPECT_THAT(found(store_, query("own 99", Comparison::equal, text("2-209"))), ElementsAre(uids[209]));
    EXPECT_THAT(found(store_, query("own 7", Comparison::prefixMatch, text("1-"))), IsEmpty());
    EXPECT_THAT(store_.check(), IsEmpty());
}

} // namespace
} // namespace addressbook::test
