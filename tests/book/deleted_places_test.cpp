// Places in lists whose records another process deleted before they were accessed, and changes to such
// records.

#include "frameworks/AddressBook/model/book.h"
#include "frameworks/AddressBook/store/file/backup.h"

#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = LiveRecord::State;

constexpr Date kNow{1000};
const std::string kFirst(property::kFirst);
const std::string kGroupName(property::kGroupName);

class DeletedPlacesTest : public Scratch {
  protected:
    DeletedPlacesTest() : others_(std::make_unique<Store>(folder())) {
        ann_ = addPerson(*others_, {{kFirst, text("Ann")}});
        crew_ = newUid(Kind::group);
        saveRecords(*others_, {inserted(crew_, {{kGroupName, text("Crew")}}, Kind::group)});
        book_ = std::make_shared<Book>(std::make_unique<Store>(folder()));
    }

    // A list whose records were not accessed yet: its rows, and the store to which they belong.
    struct List {
        std::shared_ptr<Book> book;
        std::vector<Book::Place> places;
        std::shared_ptr<const Store> origin = book->store();
        LiveRecordPtr operator[](std::size_t index) const { return book->at(places.at(index).row, origin); }
    };
    List people() { return {book_, book_->records(Kind::person)}; }
    List groups() { return {book_, book_->records(Kind::group)}; }

    void elsewhere(const ChangeSet& changes) {
        others_->save(changes);
        Book::invalidateAll();
    }
    void removeElsewhere(std::vector<std::string> uids) {
        ChangeSet changes;
        changes.removed = std::move(uids);
        elsewhere(changes);
    }
    void insertElsewhere(const std::string& uid, const std::string& first) {
        ChangeSet changes;
        changes.records = {inserted(uid, {{kFirst, text(first)}})};
        elsewhere(changes);
    }
    std::string first(const LiveRecordPtr& record) {
        const auto* name = book_->value(*record, kFirst).as<std::string>();
        return name ? *name : "none";
    }
    static void expectDeleted(const LiveRecordPtr& record, const std::string& uid, Kind kind) {
        EXPECT_EQ(record->uid(), uid);
        EXPECT_EQ(record->kind, kind);
        EXPECT_EQ(record->state, State::deleted);
    }
    void ask(const char* sql) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open((folder() / "AddressBook.db").c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }

    std::unique_ptr<Store> others_;
    std::string ann_, crew_;
    std::shared_ptr<Book> book_;
};

TEST_F(DeletedPlacesTest, KeepTheIdAndTheClassOfTheirRecords) {
    const List people = this->people();
    const List groups = this->groups();
    removeElsewhere({ann_, crew_});
    for (int time = 0; time < 2; ++time) { // the object of the first time is gone at the second
        expectDeleted(people[0], ann_, Kind::person);
        expectDeleted(groups[0], crew_, Kind::group);
        EXPECT_EQ(first(people[0]), "none");
    }
    EXPECT_EQ(people[0], people[0]);
    const auto held = people[0];
    EXPECT_EQ(people[0], held);
    EXPECT_THAT(book_->records(Kind::person), IsEmpty());
}

TEST_F(DeletedPlacesTest, HaveTheirRecordsAgainThatAreBroughtBack) {
    const List people = this->people();
    removeElsewhere({ann_});
    insertElsewhere(ann_, "Annie");
    EXPECT_EQ(first(people[0]), "Annie");
    removeElsewhere({ann_});
    const auto held = people[0];
    insertElsewhere(ann_, "Anna");
    EXPECT_EQ(people[0], held);
    EXPECT_EQ(first(held), "Anna");
    EXPECT_EQ(held->state, State::persistent);
    removeElsewhere({ann_});
    expectDeleted(people[0], ann_, Kind::person);
}

TEST_F(DeletedPlacesTest, ChangesAreToldByTheSave) {
    const List people = this->people();
    const List groups = this->groups();
    removeElsewhere({ann_, crew_});
    {
        const auto ann = people[0];
        book_->set(ann, kFirst, text("Eva"));
        EXPECT_EQ(first(ann), "Eva");
    }
    EXPECT_TRUE(book_->changed());
    EXPECT_EQ(first(people[0]), "Eva") << "the book holds what is unsaved";
    book_->set(groups[0], kGroupName, text("Board"));
    EXPECT_THAT(book_->save(kNow).missing, testing::UnorderedElementsAre(ann_, crew_));
    EXPECT_FALSE(book_->changed());
    EXPECT_EQ(first(people[0]), "none");
    EXPECT_TRUE(book_->save(kNow).missing.empty()) << "told once";
    book_->set(people[0], kFirst, text("Ida"));
    EXPECT_THAT(book_->save(kNow).missing, ElementsAre(ann_)) << "changed again";
}

TEST_F(DeletedPlacesTest, ChangesToWhatWasHeldWhenItWentAreToldToo) {
    const auto ann = book_->find(ann_);
    const auto crew = book_->find(crew_);
    const std::string ben = addPerson(*others_, {{kFirst, text("Ben")}});
    removeElsewhere({ann_, crew_});
    book_->set(ann, kFirst, text("Eva"));
    EXPECT_TRUE(book_->join(crew, book_->find(ben)));
    EXPECT_THAT(book_->save(kNow).missing, testing::UnorderedElementsAre(ann_, crew_));
}

TEST_F(DeletedPlacesTest, ChangesAreSavedInARecordThatIsBroughtBackBefore) {
    const List people = this->people();
    removeElsewhere({ann_});
    book_->set(people[0], "Last", text("Lee"));
    insertElsewhere(ann_, "Anna");
    EXPECT_EQ(book_->value(*people[0], "Last"), text("Lee"));
    EXPECT_TRUE(book_->save(kNow).missing.empty());
    const RowId row = others_->find(ann_)->row;
    EXPECT_EQ(others_->value(row, "Last"), text("Lee"));
    EXPECT_EQ(others_->value(row, kFirst), text("Anna"));
}

// A process knows the records that it has deleted itself.
TEST_F(DeletedPlacesTest, ChangesToARecordDeletedHereAreDropped) {
    const List people = this->people();
    {
        const auto ann = book_->find(ann_);
        ASSERT_TRUE(book_->remove(ann));
        book_->save(kNow);
        expectDeleted(ann, ann_, Kind::person);
        book_->set(ann, kFirst, text("Eva"));
    }
    expectDeleted(people[0], ann_, Kind::person);
    book_->set(people[0], kFirst, text("Eva"));
    EXPECT_FALSE(book_->changed());
    EXPECT_TRUE(book_->save(kNow).missing.empty());
}

TEST_F(DeletedPlacesTest, HaveTheRecordsOfARestoredBook) {
    const std::filesystem::path backup = root() / "backup.db";
    backUp(folder(), backup, Existing::refuse);
    const std::string ben = addPerson(*others_, {{kFirst, text("Ben")}});
    const std::string board = newUid(Kind::group);
    saveRecords(*others_, {inserted(board, {{kGroupName, text("Board")}}, Kind::group)});
    ChangeSet gone;
    gone.removed = {addPerson(*others_, {})};
    const List people = this->people();
    const List groups = this->groups();
    others_->save(gone); // and a place is of a record that the old book has not, either
    restore(folder(), backup);
    others_ = std::make_unique<Store>(folder());
    insertElsewhere(newUid(Kind::person), "Cid"); // in a row that was another one's
    saveRecords(*others_, {updated(ann_, {{kFirst, text("Anna")}})});
    Book::invalidateAll();
    EXPECT_EQ(book_->search(query(kFirst, Comparison::equal, text("Anna")), kNow).size(), 1U);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(people[0]->uid(), ann_);
        EXPECT_EQ(first(people[0]), "Anna");
        EXPECT_EQ(groups[0]->uid(), crew_);
        EXPECT_TRUE(groups[0]->inBook());
        expectDeleted(people[1], ben, Kind::person);
        expectDeleted(people[2], gone.removed[0], Kind::person);
        expectDeleted(groups[1], board, Kind::group);
    }
    book_->set(people[0], "Last", text("Lee"));
    book_->set(people[1], "Last", text("Lee"));
    EXPECT_THAT(book_->save(kNow).missing, ElementsAre(ben));
    EXPECT_EQ(others_->value(others_->find(ann_)->row, "Last"), text("Lee"));
    EXPECT_THAT(others_->check(), IsEmpty());
}

TEST_F(DeletedPlacesTest, AreForgottenAfterAMillionDeletions) {
    const List people = this->people();
    const List groups = this->groups();
    removeElsewhere({ann_, crew_});
    ask("UPDATE deleted SET number = number + 1000000 WHERE kind = 1");
    ASSERT_TRUE(others_->findDeleted(people.places[0].row));
    for (int save = 0; save < 64; ++save) { // one of which tidies
        insertElsewhere(newUid(Kind::person), "Cid");
    }
    EXPECT_FALSE(others_->findDeleted(people.places[0].row));
    EXPECT_THROW(people[0], StoreError);
    expectDeleted(groups[0], crew_, Kind::group);
}

TEST_F(DeletedPlacesTest, AreNoRecordsOfASoundBook) {
    removeElsewhere({ann_});
    EXPECT_THAT(others_->check(), IsEmpty());
    ask("UPDATE deleted SET id = (SELECT id FROM record)");
    EXPECT_THAT(others_->check(), ElementsAre(testing::HasSubstr("noted as deleted")));
}

} // namespace
} // namespace addressbook::test
