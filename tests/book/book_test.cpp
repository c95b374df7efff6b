// The model, without Objective-C: what a program sees before it saves, after it, and when other processes
// save.

#include "frameworks/AddressBook/model/book.h"

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <algorithm>
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
    EXPECT_EQ(book_->find(ann->uid()), ann) << "one object for each unique id";
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
    EXPECT_TRUE(others_.value(others_.find(ann->uid())->row, kFirst).empty());
}

TEST_F(BookTest, WhatOthersSaveShowsAtTheNextCall) {
    const auto ann = person("Ann");
    book_->save(kNow);
    EXPECT_EQ(first(ann), "Ann");
    const auto revision = book_->revision();
    saveElsewhere({updated(ann->uid(), {{kFirst, text("Eva")}, {"Last", text("Lee")}})});
    EXPECT_EQ(first(ann), "Eva");
    EXPECT_NE(book_->revision(), revision);
}

TEST_F(BookTest, WhatIsChangedHereStaysWhenOthersSave) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Here"));
    saveElsewhere({updated(ann->uid(), {{kFirst, text("There")}, {"Last", text("Lee")}})});
    EXPECT_EQ(first(ann), "Here");
    EXPECT_EQ(book_->value(*ann, "Last"), text("Lee"));
    book_->save(kNow);
    EXPECT_EQ(others_.value(ann->row(), kFirst), text("Here"));
}

TEST_F(BookTest, ARecordDeletedElsewhereIsGoneAndTheSaveTellsOfIt) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    removeElsewhere(ann->uid());
    EXPECT_THAT(book_->records(Kind::person), IsEmpty());
    EXPECT_EQ(book_->find(ann->uid()), nullptr);
    EXPECT_EQ(ann->state, State::deleted);
    EXPECT_EQ(first(ann), "Eva") << "whoever holds it reads what it had";
    EXPECT_THAT(book_->save(kNow).missing, ElementsAre(ann->uid()));
    EXPECT_FALSE(book_->changed());
}

TEST_F(BookTest, ARecordBroughtBackHasItsUnsavedChangesAgain) {
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    removeElsewhere(ann->uid());
    EXPECT_EQ(book_->find(ann->uid()), nullptr);
    saveElsewhere({inserted(ann->uid(), {{"Last", text("Lee")}})});
    EXPECT_EQ(book_->find(ann->uid()), ann);
    EXPECT_EQ(ann->state, State::persistent);
    EXPECT_EQ(first(ann), "Eva");
    EXPECT_TRUE(book_->save(kNow).missing.empty());
    EXPECT_EQ(others_.value(ann->row(), kFirst), text("Eva"));
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
    EXPECT_EQ(book_->at(ann->row()), ann);
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
    EXPECT_EQ(others_.value(ann->row(), "Shoe"), number(42)) << "until the save";
    book_->save(kNow);
    EXPECT_TRUE(others_.value(ann->row(), "Shoe").empty());
}

TEST_F(BookTest, TheUsersOwnCardIsKnownAtOnce) {
    EXPECT_EQ(book_->me(), nullptr);
    const auto ann = person("Ann");
    book_->setMe(ann);
    EXPECT_EQ(book_->me(), ann);
    book_->save(kNow);
    EXPECT_EQ(others_.me(), ann->uid());
    book_->setMe(nullptr);
    EXPECT_EQ(book_->me(), nullptr);
}

// A search for a property that is being removed looks at each record as this process sees it.
TEST_F(BookTest, ASearchSeesWhatIsRemovedHere) {
    ASSERT_EQ(book_->define(Kind::person, {{"Shoe", static_cast<int>(Type::integer)}}), 1);
    const auto ann = person("Ann");
    const auto eva = person("Eva");
    const auto ida = person("Ida");
    book_->set(ann, "Shoe", number(42));
    book_->save(kNow);
    ASSERT_EQ(book_->undefine(Kind::person, {"Shoe"}), 1);
    EXPECT_TRUE(book_->remove(ida));
    const Query annOrNoShoe{Query::Compound{
        Query::Join::any,
        {query(kFirst, Comparison::equal, text("Ann")), query("Shoe", Comparison::equal, number(42))}}};
    EXPECT_THAT(book_->search(annOrNoShoe, kNow), testing::SizeIs(1));
    const Query withoutShoe{Query::Compound{
        Query::Join::all,
        {query("Shoe", Comparison::notEqual, Value()), query(kFirst, Comparison::notEqual, text("Eva"))}}};
    EXPECT_TRUE(book_->matches(withoutShoe, *ann, kNow)) << "it has no value any more";
    EXPECT_FALSE(book_->matches(withoutShoe, *eva, kNow));
    const auto places = book_->search(withoutShoe, kNow);
    ASSERT_EQ(places.size(), 1U) << "not Eva, and not Ida, who is removed";
    EXPECT_EQ(places[0].row, ann->row());
}

TEST_F(BookTest, PropertiesNeedANameAndAType) {
    constexpr int kNumber = static_cast<int>(Type::integer);
    EXPECT_EQ(book_->define(Kind::person, {{"", kNumber}}), -1);
    EXPECT_EQ(book_->define(Kind::person, {{".hidden", kNumber}}), -1);
    for (const int type :
         {0, static_cast<int>(kMultiValue), static_cast<int>(Type::dateComponents) + 1, -1}) {
        EXPECT_EQ(book_->define(Kind::person, {{"A", kNumber}, {"Shoe", type}}), -1) << type;
    }
    EXPECT_EQ(book_->typeOf(Kind::person, "A"), 0) << "all or none";
    EXPECT_EQ(book_->define(Kind::person, {{"Shoe", kNumber}, {kFirst, kNumber}}), 1) << "one is built in";
    EXPECT_EQ(book_->define(Kind::person, {{"Shoe", kNumber}}), 0);
    EXPECT_EQ(book_->typeOf(Kind::group, "Shoe"), 0) << "of the other kind";
    const auto listed = [&](Kind kind) {
        const auto names = book_->properties(kind);
        return std::find(names.begin(), names.end(), "Shoe") != names.end();
    };
    EXPECT_TRUE(listed(Kind::person));
    EXPECT_FALSE(listed(Kind::group));
    book_->save(kNow);
    EXPECT_TRUE(listed(Kind::person));
    EXPECT_FALSE(listed(Kind::group));
    EXPECT_EQ(book_->undefine(Kind::person, {kFirst}), 0);
    EXPECT_EQ(book_->undefine(Kind::person, {"Shoe"}), 1);
    EXPECT_EQ(book_->undefine(Kind::person, {"Shoe"}), 0) << "it is being removed already";
    EXPECT_FALSE(listed(Kind::person));
}

TEST_F(BookTest, AllValuesAreTheStoredOnesUnderTheUnsaved) {
    ASSERT_EQ(book_->define(Kind::person, {{"Shoe", static_cast<int>(Type::integer)}}), 1);
    const auto ann = person("Ann");
    book_->set(ann, "Note", text("old"));
    book_->set(ann, "Last", text("Lee"));
    book_->set(ann, "Shoe", number(42));
    book_->set(ann, std::string(property::kImage), Bytes(3, 'p'));
    book_->save(kNow);
    book_->set(ann, "Note", text("new"));
    book_->set(ann, "Last", Value());
    ASSERT_EQ(book_->undefine(Kind::person, {"Shoe"}), 1);
    const auto values = book_->values(*ann);
    EXPECT_EQ(values.at("Note"), text("new"));
    EXPECT_EQ(values.at(kFirst), text("Ann"));
    EXPECT_EQ(values.at(std::string(property::kUid)), text(ann->uid()));
    EXPECT_EQ(values.at(std::string(property::kImage)), Value(Bytes(3, 'p')));
    EXPECT_FALSE(values.contains("Last"));
    EXPECT_FALSE(values.contains("Shoe"));
    EXPECT_FALSE(book_->values(*person("Eva")).contains(std::string(property::kImage)));
}

TEST_F(BookTest, ARemovedRecordComesBackWithWhatWasUnsaved) {
    const auto friends = group("Friends");
    const auto ann = person("Ann");
    book_->save(kNow);
    book_->set(ann, kFirst, text("Eva"));
    EXPECT_TRUE(book_->join(friends, ann));
    EXPECT_TRUE(book_->remove(ann));
    EXPECT_FALSE(book_->remove(ann)) << "it is removed already";
    EXPECT_THAT(book_->parents(*ann), IsEmpty());
    EXPECT_TRUE(book_->add(ann));
    EXPECT_EQ(first(ann), "Eva");
    book_->save(kNow);
    EXPECT_EQ(others_.value(ann->row(), kFirst), text("Eva"));
}

TEST_F(BookTest, WhoIsRemovedBeforeTheSaveDoesNotJoinAndIsNotTheUser) {
    const auto friends = group("Friends");
    const auto ann = person("Ann");
    const auto eva = person("Eva");
    book_->save(kNow);
    EXPECT_TRUE(book_->join(friends, ann));
    EXPECT_TRUE(book_->join(friends, eva));
    book_->setMe(ann);
    EXPECT_TRUE(book_->remove(ann));
    book_->setMe(ann);
    EXPECT_TRUE(book_->save(kNow).missing.empty());
    EXPECT_THAT(book_->members(*friends, Kind::person), ElementsAre(eva));
    EXPECT_EQ(others_.me(), std::nullopt);
    const auto unknown = book_->create(Kind::person);
    book_->setMe(unknown);
    EXPECT_EQ(book_->me(), nullptr) << "nobody that is not in the book";
}

TEST_F(BookTest, ParentsAreTheGroupsAsTheyAreHere) {
    const auto ann = person("Ann");
    const auto left = group("Left");
    const auto kept = group("Kept");
    const auto stored = group("Stored");
    EXPECT_TRUE(book_->join(left, ann));
    EXPECT_TRUE(book_->join(kept, ann));
    book_->save(kNow);
    const auto fresh = group("New");
    EXPECT_TRUE(book_->leave(left, *ann));
    EXPECT_TRUE(book_->join(stored, ann));
    EXPECT_TRUE(book_->join(fresh, ann));
    EXPECT_TRUE(book_->leave(kept, *ann));
    EXPECT_TRUE(book_->join(kept, ann));
    EXPECT_THAT(book_->parents(*ann), ElementsAre(kept, stored, fresh));
    EXPECT_TRUE(book_->remove(kept));
    EXPECT_THAT(book_->parents(*ann), ElementsAre(stored, fresh));
    EXPECT_THAT(book_->parents(*book_->create(Kind::person)), IsEmpty());
}

// A circle is looked for once in each group, however many ways lead there.
TEST_F(BookTest, AGroupMayBeInsideAnotherInSeveralWays) {
    std::vector<LiveRecordPtr> levels{group("top")};
    for (int level = 0; level < 20; ++level) { // a million ways
        const auto left = group("left");
        const auto right = group("right");
        const auto next = group("next");
        for (const auto& side : {left, right}) {
            EXPECT_TRUE(book_->join(levels.back(), side));
            EXPECT_TRUE(book_->join(side, next));
        }
        levels.push_back(next);
    }
    EXPECT_FALSE(book_->join(levels.back(), levels.front()));
    EXPECT_TRUE(book_->join(levels.front(), levels.back()));
}

// A record that another process has deleted here is shown as it is there.
TEST_F(BookTest, WhatOthersDeletedAndMadeAgainIsOneRecord) {
    const auto ann = person("Ann");
    book_->save(kNow);
    EXPECT_TRUE(book_->remove(ann));
    saveElsewhere({updated(ann->uid(), {{"Last", text("Lee")}})});
    EXPECT_EQ(book_->find(ann->uid()), nullptr) << "removed here, whatever others save";
    EXPECT_EQ(ann->state, State::removed);
    EXPECT_TRUE(book_->add(ann));
    EXPECT_EQ(book_->value(*ann, "Last"), text("Lee"));
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
