// The model, without Objective-C: what a program sees before it saves, after it, and when other processes
// save.

#include "frameworks/AddressBook/model/book.h"

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = LiveRecord::State;

constexpr Date kNow{1000};
const std::string kFirst(property::kFirst);

class BookTest : public Scratch {
  protected:
    BookTest() : book_(std::make_shared<Book>(std::make_unique<Store>(folder()))), others_(folder()) {}

    LiveRecordPtr person(const std::string& name) {
        auto record = book_->create(Kind::person);
        book_->set(record, kFirst, name);
        EXPECT_TRUE(book_->add(record));
        return record;
    }
    LiveRecordPtr group(const std::string& name) {
        auto record = book_->create(Kind::group);
        book_->set(record, std::string(property::kGroupName), name);
        EXPECT_TRUE(book_->add(record));
        return record;
    }
    // Another process saves; the watch would say so.
    void saveElsewhere(std::vector<RecordChange> records) {
        saveRecords(others_, std::move(records));
        Book::invalidateAll();
    }
    void removeElsewhere(const std::string& uid) {
        ChangeSet changes;
        changes.removed = {uid};
        others_.save(changes);
        Book::invalidateAll();
    }
    std::string first(const LiveRecordPtr& record) {
        const auto* name = book_->value(*record, kFirst).as<std::string>();
        return name ? *name : "none";
    }
    std::vector<std::string> search(const std::string& name) {
        std::vector<std::string> names;
        for (const auto& place : book_->search(query(kFirst, Comparison::equal, name), kNow)) {
            names.push_back(first(place.record ? place.record : book_->at(place.row)));
        }
        return names;
    }

    std::shared_ptr<Book> book_;
    Store others_;
};

TEST_F(BookTest, AnAddedRecordIsSeenBeforeItIsSaved) {
    const auto ann = person("Ann");
    EXPECT_EQ(ann->state, State::inserted);
    EXPECT_EQ(book_->records(Kind::person).size(), 1U);
    EXPECT_THAT(search("Ann"), ElementsAre("Ann"));
    EXPECT_EQ(others_.count(Kind::person), 0);
    EXPECT_FALSE(book_->add(ann)) << "it is in the book already";
    EXPECT_TRUE(book_->changed());

    book_->save(kNow);
    EXPECT_EQ(ann->state, State::persistent);
    EXPECT_FALSE(book_->changed());
    EXPECT_EQ(others_.count(Kind::person), 1);
    EXPECT_EQ(book_->find(ann->uid), ann) << "one object for each unique id";
}

TEST_F(BookTest, AChangeCoversWhatIsStored) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    EXPECT_EQ(first(ann), "Eva");
    EXPECT_THAT(search("Ann"), IsEmpty());
    EXPECT_THAT(search("Eva"), ElementsAre("Eva"));
    EXPECT_EQ(book_->displayName(*ann), "Eva");

    book_->set(ann, kFirst, Value());
    EXPECT_EQ(first(ann), "none");
    book_->save(kNow);
    EXPECT_TRUE(others_.value(others_.find(ann->uid)->row, kFirst).empty());
}

TEST_F(BookTest, WhatOthersSaveShowsAtTheNextCall) {
    const auto ann = person("Ann");
    book_->save(kNow);
    EXPECT_EQ(first(ann), "Ann");
    const auto revision = book_->revision();
    saveElsewhere({updated(ann->uid, {{kFirst, text("Eva")}, {"Last", text("Lee")}})});
    EXPECT_EQ(first(ann), "Eva");
    EXPECT_NE(book_->revision(), revision);
}

TEST_F(BookTest, WhatIsChangedHereStaysWhenOthersSave) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Here"));
    saveElsewhere({updated(ann->uid, {{kFirst, text("There")}, {"Last", text("Lee")}})});
    EXPECT_EQ(first(ann), "Here");
    EXPECT_EQ(book_->value(*ann, "Last"), text("Lee"));
    book_->save(kNow);
    EXPECT_EQ(others_.value(ann->row, kFirst), text("Here"));
}

TEST_F(BookTest, ARecordDeletedElsewhereIsGoneAndTheSaveTellsOfIt) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    removeElsewhere(ann->uid);
    EXPECT_THAT(book_->records(Kind::person), IsEmpty());
    EXPECT_EQ(book_->find(ann->uid), nullptr);
    EXPECT_EQ(ann->state, State::deleted);
    EXPECT_EQ(first(ann), "Eva") << "whoever holds it reads what it had";
    EXPECT_THAT(book_->save(kNow).missing, ElementsAre(ann->uid));
    EXPECT_FALSE(book_->changed());
}

TEST_F(BookTest, ARecordBroughtBackHasItsUnsavedChangesAgain) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    removeElsewhere(ann->uid);
    EXPECT_EQ(book_->find(ann->uid), nullptr);
    saveElsewhere({inserted(ann->uid, {{"Last", text("Lee")}})});
    EXPECT_EQ(book_->find(ann->uid), ann);
    EXPECT_EQ(ann->state, State::persistent);
    EXPECT_EQ(first(ann), "Eva");
    EXPECT_TRUE(book_->save(kNow).missing.empty());
    EXPECT_EQ(others_.value(ann->row, kFirst), text("Eva"));
}

TEST_F(BookTest, ARemovedRecordComesBackUntilTheSave) {
    const auto ann = person("Ann");
    book_->save(kNow);
    EXPECT_TRUE(book_->remove(ann));
    EXPECT_THAT(book_->records(Kind::person), IsEmpty());
    EXPECT_TRUE(book_->add(ann));
    EXPECT_EQ(book_->records(Kind::person).size(), 1U);
    EXPECT_TRUE(book_->remove(ann));
    book_->save(kNow);
    EXPECT_EQ(ann->state, State::deleted);
    EXPECT_FALSE(book_->add(ann)) << "its removal was saved";
    EXPECT_EQ(book_->at(ann->row), ann);
}

TEST_F(BookTest, GroupsHaveMembersBeforeTheSaveAndAfter) {
    const auto friends = group("Friends");
    const auto ann = person("Ann");
    const auto eva = person("Eva");
    EXPECT_TRUE(book_->join(friends, ann));
    EXPECT_FALSE(book_->join(friends, ann)) << "a member already";
    EXPECT_TRUE(book_->join(friends, eva));
    EXPECT_THAT(book_->members(*friends, Kind::person), ElementsAre(ann, eva));
    book_->save(kNow);
    EXPECT_THAT(book_->members(*friends, Kind::person), ElementsAre(ann, eva));
    EXPECT_TRUE(book_->leave(friends, *ann));
    EXPECT_TRUE(book_->join(friends, ann));
    EXPECT_THAT(book_->members(*friends, Kind::person), ElementsAre(eva, ann))
        << "who comes back stands last";
    EXPECT_THAT(book_->parents(*eva), ElementsAre(friends));
}

TEST_F(BookTest, NoGroupContainsItself) {
    const auto outer = group("Outer");
    const auto inner = group("Inner");
    EXPECT_TRUE(book_->join(outer, inner));
    EXPECT_FALSE(book_->join(inner, outer));
    EXPECT_FALSE(book_->join(outer, outer));
    book_->save(kNow);
    EXPECT_FALSE(book_->join(inner, outer));
}

TEST_F(BookTest, APropertyRemovedHereHasNoValuesAnyMore) {
    ASSERT_EQ(book_->define(Kind::person, {{"Shoe", static_cast<int>(Type::integer)}}), 1);
    const auto ann = person("Ann");
    book_->set(ann, "Shoe", number(42));
    book_->save(kNow);
    EXPECT_EQ(book_->undefine(Kind::person, {"Shoe", "Unknown"}), 1);
    EXPECT_EQ(book_->typeOf(Kind::person, "Shoe"), 0);
    EXPECT_TRUE(book_->value(*ann, "Shoe").empty());
    EXPECT_THAT(book_->search(query("Shoe", Comparison::equal, number(42)), kNow), IsEmpty());
    EXPECT_EQ(others_.value(ann->row, "Shoe"), number(42)) << "until the save";
    book_->save(kNow);
    EXPECT_TRUE(others_.value(ann->row, "Shoe").empty());
}

TEST_F(BookTest, TheUsersOwnCardIsKnownAtOnce) {
    EXPECT_EQ(book_->me(), nullptr);
    const auto ann = person("Ann");
    book_->setMe(ann);
    EXPECT_EQ(book_->me(), ann);
    book_->save(kNow);
    EXPECT_EQ(others_.me(), ann->uid);
    book_->setMe(nullptr);
    EXPECT_EQ(book_->me(), nullptr);
}

TEST_F(BookTest, WhatSavesLeaveOutIsToldOnce) {
    book_->noteLeftOut("One.");
    book_->noteLeftOut("");
    book_->noteLeftOut("Two.");
    EXPECT_EQ(book_->takeLeftOut(), "One. Two.");
    EXPECT_EQ(book_->takeLeftOut(), "");
    EXPECT_FALSE(book_->takeRefusal());
    book_->noteRefusal();
    EXPECT_TRUE(book_->takeRefusal());
    EXPECT_FALSE(book_->takeRefusal());
}

} // namespace
} // namespace addressbook::test
