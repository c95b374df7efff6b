// The store while memory runs out: each allocation fails once. What is asked for fails or is right, what was saved is
// there, and what was not is not.

#include "tests/store/builders.h"
#include "tests/store/contents.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"
#include "tests/support/failing_memory.h"

#include <gmock/gmock.h>

#include <functional>

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
    // others as many as make test-long asks for. [look] is told whether the work was done.
    static void starve(const std::function<void()>& work, const std::function<void(bool)>& look) {
        const long apart = std::getenv("VELOCARD_KILLS") != nullptr ? 1 : 17;
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

} // namespace
} // namespace addressbook::test
