// The store while memory runs out: each allocation fails once. What is asked for fails or is right, what was saved is
// there, and what was not is not.

#include "frameworks/AddressBook/store/file/rescue.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/builders.h"
#include "tests/store/contents.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"
#include "tests/support/failing_memory.h"

#include <gmock/gmock.h>

#include <fstream>
#include <functional>
#include <optional>

namespace addressbook::test {
namespace {

using testing::IsEmpty;

class MemoryTest : public Scratch {
  protected:
    MemoryTest() {
        Store store(folder());
        for (const char* first : {"Ann", "Bea", "Cid"}) {
            addPerson(store, {{"First", text(first)}, {"Note", text(std::string(5000, 'n'))}});
        }
    }

    // Calls [work] while the allocation after so many fails, for all numbers of them: the first hundred, and of the
    // others each so many, or as many as make test-long asks for. [look] is told whether the work was done.
    static void starve(const std::function<void()>& work, const std::function<void(bool)>& look,
                       long every = 17) {
        const long apart = std::getenv("VELOCARD_KILLS") != nullptr ? 1 : every;
        for (long allocations = 0;; allocations += allocations < 100 ? 1 : apart) {
            SCOPED_TRACE("allocation " + std::to_string(allocations));
            bool done = false;
            try {
                support::failAllocation(allocations);
                work();
                done = true;
            } catch (const StoreError&) {     // NOLINT(bugprone-empty-catch): as it should be
            } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): likewise
            }
            const bool failed = support::allocationFailed();
            look(done);
            EXPECT_TRUE(done || failed);
            if (!failed) {
                EXPECT_GT(allocations, 20);
                return;
            }
        }
    }
};

TEST_F(MemoryTest, ASaveIsDoneOrNot) {
    Store store(folder());
    std::int64_t people = store.count(Kind::person);
    int number = 0;
    ChangeSet changes;
    const auto next = [&] {
        changes = changesAt(1);
        changes.records = {inserted(newUid(Kind::person), {{"First", text("Eve " + std::to_string(++number))},
                                                           {"Note", text(std::string(5000, 'n'))},
                                                           {"own" + std::to_string(number % 3), text("x")}})};
    };
    next();
    starve([&] { store.save(changes); },
           [&](bool done) {
               people += done ? 1 : 0;
               EXPECT_EQ(store.count(Kind::person), people);
               EXPECT_EQ(store.find(changes.records[0].uid).has_value(), done);
               next();
           });
    EXPECT_THAT(store.check(), IsEmpty());
    EXPECT_EQ(Store(folder()).count(Kind::person), people);
}

TEST_F(MemoryTest, ALargeSaveIsDoneOrNot) {
    Store store(folder());
    std::int64_t people = store.count(Kind::person);
    ChangeSet changes;
    const auto next = [&] {
        changes = changesAt(1);
        for (int i = 0; i < 20; ++i) {
            changes.records.push_back(inserted(
                newUid(Kind::person), {{"First", text("Eve")}, {property::kImage.data(), Bytes(50, 'p')}}));
        }
    };
    next();
    starve([&] { store.save(changes); },
           [&](bool done) {
               people += done ? 20 : 0;
               EXPECT_EQ(store.count(Kind::person), people);
               next();
           });
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(MemoryTest, WhatIsReadIsRight) {
    const Store store(folder());
    const Contents whole = contentsOf(store);
    Contents now;
    starve([&] { now = contentsOf(store); },
           [&](bool done) {
               if (done) {
                   EXPECT_EQ(now, whole);
               }
           });
    std::vector<std::string> hits;
    const Query wanted = query("First", Comparison::containsSubStringCaseInsensitive, text("nn"));
    starve([&] { hits = found(store, wanted); },
           [&](bool done) {
               if (done) {
                   EXPECT_EQ(hits.size(), 1U);
               }
           });
}

TEST_F(MemoryTest, ABookIsOpenedOrNot) {
    const Contents whole = contentsOf(Store(folder()));
    std::optional<Store> store;
    starve([&] { store.emplace(folder()); },
           [&](bool done) {
               if (done) {
                   EXPECT_EQ(contentsOf(*store), whole);
               }
               store.reset();
           });
    EXPECT_EQ(contentsOf(Store(folder())), whole);
}

// What is right is not called wrong because there was no memory to look at it.
TEST_F(MemoryTest, ACheckIsRightOrNone) {
    for (const bool damaged : {false, true}) {
        if (damaged) {
            execute(folder() / kFileName, "UPDATE record SET card = x'00' || substr(card, 2) WHERE id = 2");
        }
        const Store store(folder());
        const auto problems = store.check();
        EXPECT_EQ(problems.size(), damaged ? 1U : 0U);
        std::vector<std::string> now;
        starve([&] { now = store.check(); },
               [&](bool done) {
                   if (done) {
                       EXPECT_EQ(now, problems);
                   }
               });
    }
}

// Nothing that can be read is left out because there was no memory to read it.
TEST_F(MemoryTest, ARescueIsWholeOrNone) {
    namespace fs = std::filesystem;
    const fs::path file = folder() / kFileName, copy = root() / "copy", empty = root() / "empty",
                   made = root() / "made";
    execute(file, "UPDATE record SET card = x'00' || substr(card, 2) WHERE id = 2");
    {
        const Store store(empty);
    }
    std::optional<Store::Impl> book;
    const auto begin = [&] {
        book.reset();
        fs::remove_all(made);
        fs::copy(empty, made);
        fs::copy_file(file, copy, fs::copy_options::overwrite_existing);
        book.emplace(made, Store::Access::readWrite, std::chrono::seconds(1));
    };
    const auto rescued = [&] { return rescue(file, copy, *book, {}); };
    begin();
    const std::vector<std::string> lost = rescued();
    EXPECT_EQ(lost.size(), 1U);
    const Contents whole = contentsOf(Store(made));
    EXPECT_EQ(whole.records.size(), 3U);
    begin();
    std::vector<std::string> now;
    starve([&] { now = rescued(); },
           [&](bool done) {
               if (done) {
                   EXPECT_EQ(now, lost);
                   EXPECT_EQ(contentsOf(Store(made)), whole);
               }
               begin();
           });
}

TEST_F(MemoryTest, AnOlderBookIsBroughtUpToDateOrNot) {
    const std::filesystem::path file = folder() / kFileName,
                                older = std::string(BOOKS_FOLDER) + "/version5.db";
    const auto putThere = [&] {
        std::filesystem::remove_all(folder());
        std::filesystem::create_directory(folder());
        std::filesystem::copy_file(older, file);
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    };
    moveTo("UTC"); // in which it was written
    putThere();
    const Contents whole = contentsOf(Store(folder()));
    EXPECT_GT(whole.records.size(), 4U);
    putThere();
    starve([&] { Store{folder()}; },
           [&](bool done) {
               const Store store(folder());
               EXPECT_EQ(contentsOf(store), whole) << done;
               EXPECT_THAT(store.check(), IsEmpty());
               putThere();
           },
           97);
}

} // namespace
} // namespace addressbook::test
