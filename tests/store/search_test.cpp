// The store must find what matches() finds: random records, written, changed and deleted in several saves,
// and random queries of every comparison, with and without label, key and value. The seed is printed when the
// results differ.

#include "tests/store/random_book.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

namespace addressbook::test {
namespace {

class SearchTest : public Scratch, public testing::WithParamInterface<unsigned> {};

TEST_P(SearchTest, FindsWhatMatches) {
    Generator generator(GetParam());
    Store store(folder());
    Model model({&store});
    std::size_t hits = 0;
    std::array<int, kComparisonCount> withHits{};
    for (int save = 0; save < 4; ++save) {
        model.save(generator, kNow - kDay * (3 - save));
        for (int i = 0; i < 1200; ++i) {
            if (i % 60 == 40) { // more than wait for each other
                for (int few = 0; few < 7; ++few) {
                    model.saveFew(generator, kNow - kDay * (3 - save) + i * 10 + few);
                }
            }
            const auto& records = model.records();
            const auto& near =
                std::next(records.begin(), static_cast<std::ptrdiff_t>(generator.below(records.size())));
            const Query query = generator.query(MemoryRecord(near->second).values());
            const std::vector<RowId> expected = model.matching(query);
            ASSERT_EQ(store.search(query, Date{kNow}), expected)
                << "seed " << GetParam() << ", save " << save << ", query " << i << ": " << described(query);
            hits += expected.size();
            if (const auto* condition = std::get_if<Condition>(&query.node);
                condition != nullptr && !expected.empty()) {
                ++withHits[static_cast<std::size_t>(condition->comparison)];
            }
        }
        EXPECT_THAT(store.check(), testing::IsEmpty());
    }
    EXPECT_GT(hits, 10'000U);
    for (std::size_t i = 0; i < withHits.size(); ++i) {
        EXPECT_GT(withHits[i], 3) << "comparison " << i << " was hardly tried";
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SearchTest, testing::Values(1U, 2U, 3U));

using SearchOrderTest = Scratch;

TEST_F(SearchOrderTest, IsTheOrderOfAdding) {
    Store store(folder());
    std::vector<std::string> uids;
    std::vector<RecordChange> records;
    for (const char* name : {"Zoe", "adam", "Mia", "Zora", "Ada"}) {
        uids.push_back(newUid(Kind::person));
        records.push_back(inserted(uids.back(), {{"First", text(name)}}));
    }
    saveRecords(store, records);
    saveRecords(store, {updated(uids[0], {{"First", text("Aaron")}})}, 2);
    EXPECT_EQ(found(store, query("First", Comparison::notEqual, text("x"))), uids);
    EXPECT_EQ(found(store, query("First", Comparison::equal, Value())), uids);
    EXPECT_EQ(found(store, query("First", Comparison::prefixMatchCaseInsensitive, text("a"))),
              (std::vector{uids[0], uids[1], uids[4]}));
    EXPECT_EQ(found(store, query("First", Comparison::greaterThan, text("B"))),
              (std::vector{uids[1], uids[2], uids[3]}));
}

TEST_F(SearchOrderTest, SeesTheSavesOfOtherStores) {
    Store first(folder());
    Store second(folder());
    EXPECT_TRUE(found(first, query("own", Comparison::equal, text("1"))).empty());
    const std::string uid = addPerson(second, {{"own", text("1")}});
    EXPECT_EQ(found(first, query("own", Comparison::equal, text("1"))), std::vector{uid});
}

} // namespace
} // namespace addressbook::test
