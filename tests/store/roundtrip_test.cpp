// Values of every type are read from the database as they were written.

#include "frameworks/AddressBook/store/store.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <limits>

namespace addressbook::test {
namespace {

using RoundTripTest = Scratch;

TEST_F(RoundTripTest, EveryTypeOfValueReturnsUnchanged) {
    const std::string uid = newUid(Kind::person);
    const MultiValue phones{{{newUuid(), "_$!<Home>!$_", std::string("1")}, {"no uuid", "", Value()}},
                            "no uuid"};
    const MultiValue addresses{
        {{newUuid(), "Ferien", Dictionary{{"City", std::string("Köln")}, {"", std::string()}}}}, ""};
    const std::map<std::string, Value> values{
        {"First", std::string("Jose\u0301 \0 \xED\xA0\x80 \xFF\xC0 end", 19)},
        {"Last", std::string()},
        {"i", std::numeric_limits<std::int64_t>::min()},
        {"r", -0.1e300},
        {"d", Date{-1.5}},
        {"c", DateComponents{.year = {}, .month = 2, .day = 29, .hour = {}, .minute = {}, .second = -1}},
        {"b", Bytes{0, 255, 1}},
        {"a", Array{Value(), std::string("x"), Array{}, Dictionary{{"k", 1.5}}}},
        {"m", Dictionary{}},
        {"Phone", phones},
        {"Address", addresses},
        {"empty", MultiValue{}},
        {".VCardLines", Array{std::string("X-A:1")}},
    };
    {
        Store store(folder());
        ChangeSet changes;
        changes.time = {100};
        changes.records.push_back({uid, Kind::person, true, values});
        changes.records.back().values.emplace(property::kImage, Bytes{9, 8});
        const SaveResult result = store.save(changes);
        EXPECT_THAT(result.inserted, testing::ElementsAre(uid));
    }
    Store store(folder());
    const auto record = store.find(uid);
    ASSERT_TRUE(record);
    auto expected = values;
    expected.emplace("UID", uid);
    expected.emplace("Creation", Date{100});
    expected.emplace("Modification", Date{100});
    EXPECT_EQ(store.values(record->row), expected);
    for (const auto& [name, value] : expected) {
        EXPECT_EQ(store.value(record->row, name), value) << name;
    }
    EXPECT_EQ(store.value(record->row, property::kImage), Value(Bytes{9, 8}));
    EXPECT_THAT(store.check(), testing::IsEmpty());
    EXPECT_THAT(
        store.search(Query{Condition{Kind::person, "Phone", {}, {}, std::string("1"), Comparison::equal}},
                     Date{0}),
        testing::ElementsAre(record->row));
}

} // namespace
} // namespace addressbook::test
