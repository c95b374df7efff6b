// What is noted for keeping in step with servers, and how it is written with the records.

#include "frameworks/AddressBook/store/deflate.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kCard = "BEGIN:VCARD\r\nVERSION:3.0\r\nN:A\r\nEND:VCARD\r\n";

class SyncStateTest : public Scratch {
  protected:
    // Notes an account with one address book, and returns the id of that.
    std::int64_t addCollection(const std::string& name = "work") {
        ChangeSet changes;
        changes.sync.accounts.push_back(
            {0, "https://x.example/", "ida", name, PasswordSource::command, "pass x", "/ca.pem", true});
        changes.sync.collections.push_back(
            {0, 0, "https://x.example/ida/" + name + "/", "Work", "", 0, true});
        const SaveResult result = store_.save(changes);
        EXPECT_THAT(result.accounts, SizeIs(1));
        return result.collections.at(0);
    }
    void saveLink(const SyncLink& link) {
        ChangeSet changes;
        changes.sync.links.push_back(link);
        store_.save(changes);
    }
    // Runs SQL on the closed or open book, behind the store's back.
    void execute(const std::string& sql) { test::execute(folder() / kFileName, sql); }
    std::unique_ptr<Store> opened_ = std::make_unique<Store>(folder());
    Store& store_ = *opened_;
};

TEST_F(SyncStateTest, GivesBackWhatWasNoted) {
    const std::int64_t collection = addCollection();
    const std::string uid = addPerson(store_, {{"Last", text("A")}});
    const SyncLink link{collection, "/ida/work/1.vcf", uid, "\"e1\"", kCard, false};
    ChangeSet changes;
    changes.sync.links.push_back(link);
    changes.sync.conflicts.push_back({0, uid, "Phone", "home", text("1"), Date{5}, true});
    store_.save(changes);

    const Store again(folder());
    ASSERT_THAT(again.syncAccounts(), SizeIs(1));
    const SyncAccount account = again.syncAccounts()[0];
    EXPECT_EQ(account, (SyncAccount{account.id, "https://x.example/", "ida", "work", PasswordSource::command,
                                    "pass x", "/ca.pem", true}));
    EXPECT_THAT(again.syncCollections(),
                ElementsAre(SyncCollection{collection, account.id, "https://x.example/ida/work/", "Work", "",
                                           0, true}));
    EXPECT_EQ(again.syncLink(collection, link.href), link);
    EXPECT_EQ(again.syncLink(collection, "/other"), std::nullopt);
    EXPECT_THAT(again.syncLinksOf(uid), ElementsAre(link));
    ASSERT_THAT(again.syncConflicts(), SizeIs(1));
    EXPECT_EQ(again.syncConflicts()[0], (SyncConflict{1, uid, "Phone", "home", text("1"), Date{5}, true}));
    std::vector<SyncLink> visited;
    again.visitSyncLinks(collection, [&](SyncLink&& each) { visited.push_back(std::move(each)); });
    SyncLink withoutText = link;
    withoutText.text.clear();
    EXPECT_THAT(visited, ElementsAre(withoutText));
    EXPECT_THAT(again.check(), IsEmpty());
}

TEST_F(SyncStateTest, ALinkTakesThePlaceOfTheOneOfItsHref) {
    const std::int64_t collection = addCollection();
    SyncLink link{collection, "/1", addPerson(store_, {}), "\"e1\"", kCard, false};
    saveLink(link);
    link.etag = "\"e2\"";
    link.text = kCard + kCard;
    saveLink(link);
    EXPECT_EQ(store_.syncLink(collection, "/1"), link);
    ChangeSet changes;
    changes.sync.removedLinks.emplace_back(collection, "/1");
    store_.save(changes);
    EXPECT_EQ(store_.syncLink(collection, "/1"), std::nullopt);
}

TEST_F(SyncStateTest, ARecordBelongsToOneCardAndLeavesOthers) {
    const std::int64_t here = addCollection("work"), there = addCollection("home");
    const std::string uid = addPerson(store_, {});
    SyncLink first{here, "/1", uid, "\"e\"", kCard, false}, second{there, "/2", uid, "", "", false};
    saveLink(first);
    EXPECT_THROW(saveLink(second), StoreError);
    first.leaves = true;
    ChangeSet changes;
    changes.sync.links = {first, second};
    store_.save(changes);
    EXPECT_THAT(store_.syncLinksOf(uid), ElementsAre(second, first));
    EXPECT_FALSE(store_.syncCollections()[0].isDefault); // only the last one is
    EXPECT_TRUE(store_.syncCollections()[1].isDefault);
}

TEST_F(SyncStateTest, LinksOutliveTheirRecords) {
    const std::int64_t collection = addCollection();
    const std::string uid = addPerson(store_, {});
    saveLink({collection, "/1", uid, "\"e\"", kCard, false});
    ChangeSet changes;
    changes.removed = {uid};
    store_.save(changes);
    EXPECT_THAT(store_.syncLinksOf(uid), SizeIs(1)); // by which the card there is deleted
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SyncStateTest, AnAccountGoesWithAllThatItHas) {
    const std::int64_t collection = addCollection();
    const std::string uid = addPerson(store_, {});
    saveLink({collection, "/1", uid, "\"e\"", kCard, false});
    ChangeSet changes;
    changes.sync.removedAccounts = {store_.syncAccounts()[0].id};
    store_.save(changes);
    EXPECT_THAT(store_.syncAccounts(), IsEmpty());
    EXPECT_THAT(store_.syncCollections(), IsEmpty());
    EXPECT_THAT(store_.syncLinksOf(uid), IsEmpty());
    EXPECT_TRUE(store_.find(uid));
}

TEST_F(SyncStateTest, ACollectionGoesWithItsLinksAlone) {
    const std::int64_t work = addCollection("work"), home = addCollection("home");
    const std::string uid = addPerson(store_, {}), other = addPerson(store_, {});
    saveLink({work, "/1", uid, "\"e\"", kCard, false});
    saveLink({home, "/1", other, "\"e\"", kCard, false});
    ChangeSet changes;
    changes.sync.removedCollections = {work};
    store_.save(changes);
    EXPECT_THAT(store_.syncAccounts(), SizeIs(2));
    ASSERT_THAT(store_.syncCollections(), SizeIs(1));
    EXPECT_EQ(store_.syncCollections()[0].id, home);
    EXPECT_THAT(store_.syncLinksOf(uid), IsEmpty());
    EXPECT_THAT(store_.syncLinksOf(other), SizeIs(1));
    EXPECT_TRUE(store_.find(uid));
    EXPECT_THAT(store_.check(), IsEmpty());
}

TEST_F(SyncStateTest, AConflictGoesAlone) {
    const std::string uid = addPerson(store_, {});
    ChangeSet changes;
    changes.sync.conflicts = {{0, uid, "Phone", "home", text("1"), Date{5}, true},
                              {0, uid, "Phone", "work", text("2"), Date{6}, false}};
    store_.save(changes);
    ChangeSet removal;
    removal.sync.removedConflicts = {1};
    EXPECT_GT(store_.save(removal).change, 0);
    EXPECT_THAT(store_.syncConflicts(),
                ElementsAre(SyncConflict{2, uid, "Phone", "work", text("2"), Date{6}, false}));
}

TEST_F(SyncStateTest, AccountsAndCollectionsChangeWhole) {
    const std::int64_t id = addCollection();
    SyncAccount account = store_.syncAccounts()[0];
    account.url = "https://y.example/";
    account.user = "bo";
    account.source = PasswordSource::file;
    account.password = "/secret";
    account.caFile.clear();
    account.allowHttp = false;
    SyncCollection collection = store_.syncCollections()[0];
    collection.url = "https://y.example/bo/";
    collection.state = "token";
    collection.change = 3;
    collection.isDefault = false;
    ChangeSet changes;
    changes.sync.accounts = {account};
    changes.sync.collections = {collection};
    const SaveResult result = store_.save(changes);
    EXPECT_THAT(result.accounts, IsEmpty()); // none is new
    EXPECT_THAT(result.collections, IsEmpty());
    EXPECT_THAT(store_.syncAccounts(), ElementsAre(account));
    EXPECT_THAT(store_.syncCollections(), ElementsAre(collection));
    EXPECT_EQ(collection.id, id);
}

TEST_F(SyncStateTest, WhatIsGoneIsNotChanged) {
    addCollection();
    SyncAccount account = store_.syncAccounts()[0];
    SyncCollection collection = store_.syncCollections()[0];
    const auto refusal = [this](const SyncChanges& sync) -> std::string {
        ChangeSet changes;
        changes.sync = sync;
        try {
            store_.save(changes);
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::refused);
            return error.what();
        }
        return "saved";
    };
    const auto accounts = store_.syncAccounts();
    const auto collections = store_.syncCollections();
    account.id += 5;
    collection.id += 5;
    SyncChanges goneAccount, goneCollection;
    goneAccount.accounts = {account};
    goneCollection.collections = {collection};
    EXPECT_THAT(refusal(goneAccount), HasSubstr("there is already an account work, or this one is gone"));
    EXPECT_THAT(refusal(goneCollection),
                HasSubstr("the address book https://x.example/ida/work/ is there already, or is gone"));
    EXPECT_EQ(store_.syncAccounts(), accounts);
    EXPECT_EQ(store_.syncCollections(), collections);
}

TEST_F(SyncStateTest, ADamagedCardOrConflictIsToldByReading) {
    const std::int64_t collection = addCollection();
    const std::string uid = addPerson(store_, {});
    saveLink({collection, "/1", uid, "\"e\"", kCard, false});
    ChangeSet changes;
    changes.sync.conflicts.push_back({0, uid, "Phone", "home", text("1"), Date{5}, true});
    store_.save(changes);
    execute("UPDATE link SET text = x'0000000A00'; UPDATE conflict SET value = x'63'");
    const auto problem = [](const std::function<void()>& read) -> std::string {
        try {
            read();
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::damaged);
            return error.what();
        }
        return "read";
    };
    const std::string card = "is damaged (the card of /1 as it was agreed with the server)";
    EXPECT_THAT(problem([&] { store_.syncLink(collection, "/1"); }), HasSubstr(card));
    EXPECT_THAT(problem([&] { store_.syncLinksOf(uid); }), HasSubstr(card));
    EXPECT_THAT(problem([&] { store_.syncConflicts(); }),
                HasSubstr("is damaged (a conflict of " + uid + ": a value of an unknown type)"));
    int links = 0; // their cards are not asked for
    store_.visitSyncLinks(collection, [&](const SyncLink& link) { links += link.uid == uid ? 1 : 0; });
    EXPECT_EQ(links, 1);
}

TEST_F(SyncStateTest, IsWrittenWithTheRecordsOrNotAtAll) {
    const std::int64_t collection = addCollection();
    const std::string uid = addPerson(store_, {{"Last", text("A")}});
    ChangeSet changes = changesAt(2);
    changes.records.push_back(updated(uid, {{"Last", text("B")}}));
    changes.sync.links.push_back({collection, "/1", uid, "\"e\"", kCard, false});
    changes.sync.links.push_back({collection + 7, "/2", uid, "\"e\"", kCard, true}); // there is no such one
    EXPECT_THROW(store_.save(changes), StoreError);
    EXPECT_EQ(store_.value(store_.find(uid)->row, "Last"), text("A"));
    EXPECT_THAT(store_.syncLinksOf(uid), IsEmpty());
}

TEST_F(SyncStateTest, RefusesWhatIsThereTwice) {
    addCollection();
    EXPECT_THROW(addCollection(), StoreError);
    ChangeSet changes;
    changes.sync.collections.push_back({0, 0, "https://y.example/", "Y", "", 0, false});
    EXPECT_THROW(store_.save(changes), StoreError); // it belongs to no account
}

// Others would read all their records again.
TEST_F(SyncStateTest, TellsNobodyWhenNoRecordChanges) {
    const std::string uid = addPerson(store_, {});
    const std::int64_t before = store_.lastChange();
    addCollection();
    EXPECT_GT(store_.lastChange(), before); // every save has a number
    EXPECT_THAT(store_.changesSince(before), IsEmpty());
    saveRecords(store_, {updated(uid, {{"Last", text("A")}})});
    ASSERT_THAT(store_.changesSince(before), SizeIs(1));
    EXPECT_THAT(store_.changesSince(before)[0].updated, ElementsAre(uid));
}

TEST_F(SyncStateTest, CheckFindsWhatBelongsToNothing) {
    const std::int64_t collection = addCollection();
    saveLink({collection, "/1", addPerson(store_, {}), "\"e\"", kCard, false});
    execute("DELETE FROM account; UPDATE link SET text = x'0000000A00'");
    EXPECT_THAT(store_.check(),
                ElementsAre(HasSubstr("belong to no account"), HasSubstr("agreed with a server")));
}

TEST_F(SyncStateTest, RepairTakesItAlong) {
    const std::int64_t collection = addCollection();
    const std::string good = addPerson(store_, {}), bad = addPerson(store_, {});
    saveLink({collection, "/1", good, "\"e\"", kCard, false});
    saveLink({collection, "/2", bad, "\"e\"", kCard, false});
    execute("UPDATE link SET text = x'0000000A00' WHERE href = '/2'; UPDATE collection SET state = 's', "
            "change = 9");
    const auto accounts = store_.syncAccounts();
    opened_.reset();
    EXPECT_TRUE(repair(folder()).needed);
    const Store repaired(folder());
    EXPECT_EQ(repaired.syncLink(collection, "/1")->text, kCard);
    EXPECT_EQ(repaired.syncLink(collection, "/2"), (SyncLink{collection, "/2", bad, "", "", false}));
    EXPECT_EQ(repaired.syncAccounts(), accounts);
    EXPECT_EQ(repaired.syncCollections()[0].state, ""); // all is compared anew
    EXPECT_EQ(repaired.syncCollections()[0].change, -1);
    EXPECT_THAT(repaired.check(), IsEmpty());
}

TEST(DeflateTest, GivesBackTheText) {
    for (const std::string& card : {std::string(), kCard, std::string(100'000, 'x')}) {
        EXPECT_EQ(inflated(deflated(card)), card);
    }
    EXPECT_LT(deflated(std::string(100'000, 'x')).size(), 1000u);
    EXPECT_EQ(inflated("abc"), std::nullopt);
    EXPECT_EQ(inflated(deflated(kCard).substr(0, 20)), std::nullopt);
    EXPECT_EQ(inflated(std::string("\xFF\xFF\xFF\xFF") + deflated(kCard).substr(4)), std::nullopt);
}

TEST_F(SyncStateTest, ACardLargerThan256MegabytesIsRefused) {
    SyncLink link{addCollection(), "/1", addPerson(store_, {}), "\"e1\"", kCard, false};
    link.text.resize((std::size_t{256} << 20) + 1, 'x');
    try {
        saveLink(link);
        FAIL() << "was not refused";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::refused);
        EXPECT_THAT(error.what(), HasSubstr("256 MB"));
    }
    EXPECT_EQ(store_.syncLink(link.collection, "/1"), std::nullopt);
}

TEST_F(SyncStateTest, WhatIsBasedOnAnotherStateIsNotWritten) {
    const std::string ida = test::addPerson(store_, {{"First", test::text("Ida")}});
    const std::string bo = test::addPerson(store_, {{"First", test::text("Bo")}});
    Store other(folder());
    ChangeSet changes = test::changesAt(5);
    changes.records = {test::updated(ida, {{"Last", test::text("x")}})};
    changes.basis = store_.lastChange();
    test::saveRecords(other, {test::updated(bo, {{"Last", test::text("y")}})});
    EXPECT_FALSE(store_.save(changes).outdated); // it was about another record
    changes.records[0].values["Last"] = test::text("z");
    changes.basis = store_.lastChange();
    test::saveRecords(other, {test::updated(ida, {{"First", test::text("I")}})});
    const SaveResult result = store_.save(changes);
    EXPECT_TRUE(result.outdated);
    EXPECT_EQ(result.change, 0);
    EXPECT_EQ(store_.value(store_.find(ida)->row, "Last"), Value(test::text("x")));
    changes.basis = store_.lastChange();
    EXPECT_FALSE(store_.save(changes).outdated);
    ChangeSet linked; // a link of the record counts, and what is about links alone
    linked.sync.conflicts.push_back({0, bo, "Last", {}, test::text("q"), Date{1}, true});
    changes.basis = store_.lastChange();
    other.save(linked);
    EXPECT_TRUE(store_.save(changes).outdated);
}

// Where the log does not say what another save was about, it may have been about anything.
TEST_F(SyncStateTest, WhatMayBeBasedOnAnotherStateIsNotWritten) {
    const std::string ida = addPerson(store_, {{"First", text("Ida")}});
    const std::string bo = addPerson(store_, {{"First", text("Bo")}});
    const std::string group = newUid(Kind::group);
    saveRecords(store_, {inserted(group, {}, Kind::group)});
    Store other(folder());
    ChangeSet joining = changesAt(5);
    joining.memberships = {{group, ida, true}};
    const auto outdated = [&](const std::function<void()>& meanwhile) {
        joining.basis = store_.lastChange();
        meanwhile();
        return store_.save(joining).outdated;
    };
    EXPECT_TRUE(outdated([&] { saveRecords(other, {updated(ida, {{"First", text("I")}})}); }));
    EXPECT_TRUE(outdated([&] { saveRecords(other, {updated(group, {{"GroupName", text("G")}})}); }));
    EXPECT_TRUE(outdated([&] {
        ChangeSet me = changesAt(6);
        me.me = bo; // no record changes
        other.save(me);
    }));
    EXPECT_TRUE(outdated([&] {
        ChangeSet removal = changesAt(7);
        removal.removed = {group};
        other.save(removal);
        saveRecords(other, {inserted(group, {}, Kind::group)}); // and it is back
    }));
    EXPECT_TRUE(store_.members(store_.find(group)->row).empty());
    EXPECT_FALSE(outdated([&] { saveRecords(other, {updated(bo, {{"First", text("B")}})}); }));
    EXPECT_THAT(store_.members(store_.find(group)->row), ElementsAre(store_.find(ida)->row));
}

} // namespace
} // namespace addressbook::test
