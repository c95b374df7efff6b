// The access paths of searches: which index is used, how many rows are read, and that their number grows with
// the hits and not with the size of the book.

#include "frameworks/AddressBook/store/explain.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

namespace addressbook::test {
namespace {

using enum Comparison;
using Execution = SearchStep::Execution;

constexpr double kNow = 800'000'000; // 2026-05-09
constexpr double kDay = 86'400;
constexpr double kYear = 365.25 * kDay;
constexpr const char* kMobile = "_$!<Mobile>!$_";
constexpr const char* kHome = "_$!<Home>!$_";

// A person who has everything that the searches look for, or nothing of it.
Values person(int place, bool isHit) {
    const std::string own = std::to_string(1000 + place);
    const Dictionary address{{"City", text(isHit ? "Meißen" : "City" + own)}, {"ZIP", text(own)}};
    return {
        {"First", text((isHit ? "Mei " : "Ole ") + own)},
        {"Last", text(isHit ? "Lindström" : "Name" + own)},
        {"Note", text(isHit ? "plays the piano" : "note " + own)},
        {"ABPersonFlags", number(isHit ? 77 : 1)},
        // The others' are in August to January from 1997 to 2026.
        {"Birthday", isHit ? Date{kNow + 2 * kDay - 20 * kYear}
                           : Date{kNow - place % 30 * kYear + (100 + place % 150) * kDay}},
        {"seen", isHit ? Date{kNow + 2 * kDay} : Date{kNow - (100 + place) * kDay}},
        {"Phone", MultiValue{{{newUuid(), kMobile, text(isHit ? "+41 79 471" : "+1 " + own)},
                              {newUuid(), kHome, text("+2 " + own)}},
                             {}}},
        {"Address", MultiValue{{{newUuid(), kHome, address}}, {}}},
    };
}

// Makes a book of [people] people, of whom three in the middle are hits, and a group.
void fill(Store& store, int people) {
    std::vector<RecordChange> records;
    for (int i = 0; i < people; ++i) {
        records.push_back(inserted(newUid(Kind::person), person(i, i >= people / 2 && i < people / 2 + 3)));
    }
    records.push_back(inserted("Friends:ABGroup", {{"GroupName", text("Friends")}}, Kind::group));
    saveRecords(store, records, kNow);
}

// A number that does not depend on the size of the book, and one that grows with it.
struct Count {
    int fixed = 0;
    int perPerson = 0;
    std::int64_t of(int people) const { return fixed + std::int64_t{perPerson} * people; }
};
constexpr Count kNone;
constexpr Count kThree{3, 0};
constexpr Count kAll{0, 1};

// One search, and how it is answered.
struct Explained {
    const char* name;
    Condition condition;
    AccessPath path;
    Count rows, records, hits;
    Count everyone = {};
};

void PrintTo(const Explained& explained, std::ostream* out) {
    *out << explained.name;
}

Condition where(std::string property, Comparison comparison, Value value) {
    return {Kind::person, std::move(property), {}, {}, std::move(value), comparison};
}

Condition within(Condition condition, std::optional<std::string> label, std::optional<std::string> key) {
    condition.label = std::move(label);
    condition.key = std::move(key);
    return condition;
}

Value components(int month, int day) {
    DateComponents parts;
    parts.month = month;
    parts.day = day;
    return parts;
}

std::vector<Explained> explained() {
    return {
        // name, condition, plan, index rows, records, hits, everyone
        {"equal", where("Last", equal, text("Lindström")), AccessPath::exact, kThree, kNone, kThree},
        {"equalIgnoringCase", where("Last", equalCaseInsensitive, text("LINDSTRÖM")), AccessPath::exact,
         kThree, kNone, kThree},
        {"equalLongText", where("Last", equal, text(std::string(70, 'x'))), AccessPath::exact, kNone, kNone,
         kNone},
        {"equalNumber", where("ABPersonFlags", equal, number(77)), AccessPath::exact, kThree, kNone, kThree},
        {"equalField", where("Address", equal, text("Meißen")), AccessPath::exact, kThree, kNone, kThree},
        {"equalKey", within(where("Address", equal, text("Meißen")), {}, "City"), AccessPath::exact, kThree,
         kNone, kThree},
        {"equalOtherKey", within(where("Address", equal, text("Meißen")), {}, "ZIP"), AccessPath::exact,
         kNone, kNone, kNone},
        {"equalKeyAndLabel", within(where("Address", equal, text("Meißen")), kHome, "City"),
         AccessPath::exact, kThree, kNone, kThree},
        {"notEqual",
         where("Last", notEqual, text("Lindström")),
         AccessPath::exact,
         kThree,
         kNone,
         {-3, 1},
         kAll},
        {"prefix", where("Last", prefixMatch, text("Lind")), AccessPath::prefix, kThree, kNone, kThree},
        {"prefixOtherCase", where("Last", prefixMatch, text("LIND")), AccessPath::prefix, kThree, kNone,
         kNone},
        {"prefixOfOne", where("Last", prefixMatchCaseInsensitive, text("l")), AccessPath::prefix, kThree,
         kNone, kThree},
        {"prefixLabel", within(where("Phone", prefixMatch, text("+41")), kMobile, {}), AccessPath::prefix,
         kThree, kNone, kThree},
        {"prefixOtherLabel", within(where("Phone", prefixMatch, text("+41")), kHome, {}), AccessPath::prefix,
         kNone, kNone, kNone},
        {"suffix", where("Last", suffixMatchCaseInsensitive, text("STRÖM")), AccessPath::trigram, kThree,
         kNone, kThree},
        {"suffixCaseCounts", where("Last", suffixMatch, text("ström")), AccessPath::trigram, kThree, kThree,
         kThree},
        {"suffixOfTwo", where("Last", suffixMatchCaseInsensitive, text("öM")), AccessPath::trigram, kThree,
         kNone, kThree},
        {"suffixOfOne", where("Last", suffixMatchCaseInsensitive, text("M")), AccessPath::scan, kAll, kNone,
         kThree},
        {"contains", where("Last", containsSubStringCaseInsensitive, text("DST")), AccessPath::trigram,
         kThree, kNone, kThree},
        {"containsCaseCounts", where("Last", containsSubString, text("DST")), AccessPath::trigram, kThree,
         kThree, kNone},
        {"containsLabel",
         within(where("Phone", containsSubStringCaseInsensitive, text("9 471")), kMobile, {}),
         AccessPath::trigram, kThree, kThree, kThree},
        {"containsInOtherProperty", where("First", containsSubStringCaseInsensitive, text("piano")),
         AccessPath::trigram, kThree, kNone, kNone},
        {"containsTwo", where("Last", containsSubStringCaseInsensitive, text("DS")), AccessPath::scan, kAll,
         kNone, kThree},
        {"containsOne", where("Last", containsSubString, text("ö")), AccessPath::scan, kAll, kNone, kThree},
        {"containsNothing", where("Last", containsSubString, text("")), AccessPath::scan, kAll, kNone, kAll},
        {"doesNotContain",
         where("Last", doesNotContainSubString, text("ström")),
         AccessPath::trigram,
         kThree,
         kThree,
         {-3, 1},
         kAll},
        {"greater", where("ABPersonFlags", greaterThan, number(1)), AccessPath::range, kThree, kNone, kThree},
        {"greaterOrEqual", where("ABPersonFlags", greaterThanOrEqual, Value(76.5)), AccessPath::range, kThree,
         kNone, kThree},
        {"less", where("ABPersonFlags", lessThan, number(2)), AccessPath::range, {-3, 1}, kNone, {-3, 1}},
        {"lessDate",
         where("seen", lessThanOrEqual, Date{kNow - 100 * kDay}),
         AccessPath::range,
         {-3, 1},
         kNone,
         {-3, 1}},
        {"greaterText", where("Last", greaterThan, text("Z")), AccessPath::scan, kAll, kNone, kNone},
        {"bits", where("ABPersonFlags", bitsInBitFieldMatch, number(76)), AccessPath::scan, kAll, kNone,
         kThree},
        {"around", where("seen", withinIntervalAroundToday, days(3)), AccessPath::interval, kThree, kNone,
         kThree},
        {"fromToday", where("seen", withinIntervalFromToday, days(2)), AccessPath::interval, kThree, kNone,
         kThree},
        {"notAround",
         where("seen", notWithinIntervalAroundToday, days(3)),
         AccessPath::interval,
         kThree,
         kNone,
         {-3, 1},
         kAll},
        // A row for each of 30 years, to find them, and the hits.
        {"yearless",
         where("Birthday", withinIntervalFromTodayYearless, days(7)),
         AccessPath::interval,
         {33, 0},
         kNone,
         kThree},
        {"notYearless",
         where("Birthday", notWithinIntervalAroundTodayYearless, days(7)),
         AccessPath::interval,
         {33, 0},
         kNone,
         {-3, 1},
         kAll},
        {"wholeYear", where("Birthday", withinIntervalAroundTodayYearless, days(183)), AccessPath::scan, kAll,
         kNone, kAll},
        {"noDays", where("seen", withinIntervalAroundToday, days(-1)), AccessPath::nothing, kNone, kNone,
         kNone},
        {"noInterval", where("seen", withinIntervalAroundToday, text("7")), AccessPath::nothing, kNone, kNone,
         kNone},
        // The row of the id, and the group's, whose id is no UUID.
        {"uid", where("UID", equal, text("nobody")), AccessPath::uid, {2, 0}, kNone, kNone},
        {"uidContains", where("UID", containsSubString, text(":ABPer")), AccessPath::everyUid, kAll, kNone,
         kAll},
        {"uidNot", where("UID", notEqual, text("nobody")), AccessPath::uid, {2, 0}, kNone, kAll, kAll},
        {"isSet", where("Last", equal, Value()), AccessPath::scan, kAll, kNone, kAll},
        {"isNotSet", where("Last", notEqual, Value()), AccessPath::scan, kAll, kNone, kNone, kAll},
        {"otherwiseNothing", where("Last", prefixMatch, Value()), AccessPath::nothing, kNone, kNone, kNone},
        {"notEvenNegative", where("Last", doesNotContainSubString, Value()), AccessPath::nothing, kNone,
         kNone, kNone},
        {"components", where("Birthday", equal, components(5, 11)), AccessPath::scan, kAll, kNone, kNone},
        {"dictionary",
         where("Address", equal, Dictionary{{"City", text("x")}}),
         AccessPath::scan,
         {0, 2},
         kAll,
         kNone},
        {"neverSet", where("Nickname", equal, text("x")), AccessPath::nothing, kNone, kNone, kNone},
        {"neverSetNegative", where("Nickname", notEqual, text("x")), AccessPath::nothing, kNone, kNone, kAll,
         kAll},
        {"unknownProperty", where("shoe", containsSubString, text("lace")), AccessPath::nothing, kNone, kNone,
         kNone},
        {"internalProperty", where(".Image", equal, Value()), AccessPath::nothing, kNone, kNone, kNone},
    };
}

class ExplainTest : public Scratch, public testing::WithParamInterface<Explained> {};

TEST_P(ExplainTest, TellsThePlanAndWhatItLookedAt) {
    const Explained& wanted = GetParam();
    for (const int people : {100, 600}) {
        Store store(root() / std::to_string(people));
        fill(store, people);
        const Query query{wanted.condition};
        const SearchStep step = store.explain(query, Date{kNow});
        EXPECT_EQ(step.query, &query);
        EXPECT_EQ(step.execution, Execution::searched);
        EXPECT_EQ(step.path, wanted.path);
        EXPECT_EQ(step.indexRows, wanted.rows.of(people));
        EXPECT_EQ(step.records, wanted.records.of(people));
        EXPECT_EQ(step.hits, wanted.hits.of(people));
        EXPECT_EQ(step.everyone, wanted.everyone.of(people));
        EXPECT_EQ(step.hits, static_cast<std::int64_t>(store.search(query, Date{kNow}).size()));
        EXPECT_GT(step.time.count(), 0);
        EXPECT_THAT(step.parts, testing::IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Conditions, ExplainTest, testing::ValuesIn(explained()),
                         [](const auto& one) { return std::string(one.param.name); });

using ExplainYearsTest = Scratch;

// Of too many years, looking up each one is no better than looking at all dates.
TEST_F(ExplainYearsTest, ThatAreTooManyAreScanned) {
    Store store(folder());
    const Query query{where("founded", withinIntervalAroundTodayYearless, days(2))};
    for (int year = 0; year < 600; year += 300) {
        std::vector<RecordChange> records;
        for (int i = 0; i < 300; ++i) {
            records.push_back(inserted(newUid(Kind::person), {{"founded", Date{kNow - (year + i) * kYear}}}));
        }
        saveRecords(store, records, kNow);
        const SearchStep step = store.explain(query, Date{kNow});
        EXPECT_EQ(step.path, year == 0 ? AccessPath::interval : AccessPath::scan);
        EXPECT_GT(step.hits, 200);
    }
}

class ExplainCompoundTest : public Scratch {
  protected:
    ExplainCompoundTest() : store_(folder()) { fill(store_, 200); }

    // The steps of this compound.
    SearchStep explain(Query::Join join, std::vector<Query> children) {
        query_.node = Query::Compound{join, std::move(children)};
        SearchStep step = store_.explain(query_, Date{kNow});
        EXPECT_EQ(step.query, &query_);
        EXPECT_EQ(step.hits, static_cast<std::int64_t>(store_.search(query_, Date{kNow}).size()));
        return step;
    }
    // The place of a step among the children as they were given.
    std::ptrdiff_t place(const SearchStep& step) {
        return step.query - std::get<Query::Compound>(query_.node).children.data();
    }

    const Query lindstrom_{where("Last", equal, text("Lindström"))};
    const Query ordinary_{where("ABPersonFlags", equal, number(1))};
    const Query short_{where("Note", containsSubString, text("pi"))};
    const Query nobody_{where("Last", equal, text("Nobody"))};

    Store store_;
    Query query_;
};

TEST_F(ExplainCompoundTest, CheapestComesFirstAndTheRestIsLookedAt) {
    const SearchStep all = explain(Query::Join::all, {short_, lindstrom_});
    EXPECT_EQ(all.hits, 3);
    ASSERT_EQ(all.parts.size(), 2U);
    EXPECT_EQ(place(all.parts[0]), 1);
    EXPECT_EQ(all.parts[0].execution, Execution::searched);
    EXPECT_EQ(all.parts[0].path, AccessPath::exact);
    EXPECT_EQ(place(all.parts[1]), 0);
    EXPECT_EQ(all.parts[1].execution, Execution::verified);
    EXPECT_EQ(all.parts[1].records, 3);
    EXPECT_EQ(all.parts[1].indexRows, 0);
    EXPECT_EQ(all.parts[1].hits, 3);
    EXPECT_GE(all.time, all.parts[0].time + all.parts[1].time);
}

TEST_F(ExplainCompoundTest, ManyAreSearchedAndIntersected) {
    const SearchStep all = explain(Query::Join::all, {ordinary_, lindstrom_});
    EXPECT_EQ(all.hits, 0);
    ASSERT_EQ(all.parts.size(), 2U);
    EXPECT_EQ(all.parts[0].hits, 197);
    EXPECT_EQ(all.parts[1].execution, Execution::searched);
    EXPECT_EQ(all.parts[1].hits, 3);
}

TEST_F(ExplainCompoundTest, AfterNobodyNothingIsLookedAt) {
    const SearchStep all = explain(Query::Join::all, {short_, nobody_});
    ASSERT_EQ(all.parts.size(), 2U);
    EXPECT_EQ(place(all.parts[1]), 0);
    EXPECT_EQ(all.parts[1].execution, Execution::skipped);
    EXPECT_EQ(all.parts[1].indexRows + all.parts[1].records + all.parts[1].time.count(), 0);
}

TEST_F(ExplainCompoundTest, AUniqueIdComesFirst) {
    const Query uid{where("UID", equal, text(store_.find(store_.rows(Kind::person).front())->uid))};
    const SearchStep all = explain(Query::Join::all, {lindstrom_, uid});
    ASSERT_EQ(all.parts.size(), 2U);
    EXPECT_EQ(place(all.parts[0]), 1);
    EXPECT_EQ(all.parts[0].path, AccessPath::uid);
    EXPECT_EQ(all.parts[1].execution, Execution::verified);
}

TEST_F(ExplainCompoundTest, AnyIsSearchedFromEach) {
    const SearchStep any = explain(Query::Join::any, {short_, lindstrom_, ordinary_});
    EXPECT_EQ(any.hits, 200);
    ASSERT_EQ(any.parts.size(), 3U);
    EXPECT_THAT((std::array{place(any.parts[0]), place(any.parts[1]), place(any.parts[2])}),
                testing::ElementsAre(1, 2, 0));
    for (const SearchStep& part : any.parts) {
        EXPECT_EQ(part.execution, Execution::searched);
    }
    EXPECT_EQ(any.parts[2].indexRows, 200);
}

TEST_F(ExplainCompoundTest, InACompound) {
    const Query either{Query::Compound{Query::Join::any, {short_, lindstrom_}}};
    const SearchStep few = explain(Query::Join::all, {either, lindstrom_});
    ASSERT_EQ(few.parts.size(), 2U);
    EXPECT_EQ(few.parts[1].execution, Execution::verified);
    EXPECT_THAT(few.parts[1].parts, testing::IsEmpty());
    const SearchStep any = explain(Query::Join::any, {either, lindstrom_});
    ASSERT_EQ(any.parts.size(), 2U);
    ASSERT_EQ(any.parts[1].parts.size(), 2U);
    EXPECT_EQ(any.parts[1].parts[1].path, AccessPath::scan);
}

// A few records are left: whether the next condition is searched depends on how many records it would find.
TEST_F(ExplainCompoundTest, AfterAFewOnlyWhatIsFoundInNoTimeIsSearched) {
    std::vector<RecordChange> records;
    for (int i = 0; i < 45; ++i) {
        records.push_back(inserted(newUid(Kind::person), {{"Last", std::string(i < 10 ? "Aalto" : "Aalund")},
                                                          {"First", std::string(i % 2 != 0 ? "Ida" : "Ivo")},
                                                          {"City", std::string(i < 30 ? "Oulu" : "Turku")}}));
    }
    saveRecords(store_, records, kNow);
    const Query aalto{where("Last", equal, text("Aalto"))};
    const auto second = [&](const Query& query, std::int64_t hits) {
        const SearchStep all = explain(Query::Join::all, {aalto, query});
        EXPECT_EQ(all.hits, hits);
        EXPECT_EQ(place(all.parts[0]), 0);
        return all.parts[1];
    };
    const SearchStep few = second({where("First", equal, text("Ida"))}, 5);
    EXPECT_EQ(few.execution, Execution::searched);
    EXPECT_EQ(few.records, 0);
    EXPECT_EQ(few.hits, 22);
    const SearchStep many = second({where("First", prefixMatch, text("I"))}, 10); // 45 are more than 40
    EXPECT_EQ(many.execution, Execution::verified);
    EXPECT_EQ(many.records, 10);
    EXPECT_EQ(many.hits, 10);
    const SearchStep city = second({where("City", prefixMatch, text("O"))}, 10);
    EXPECT_EQ(city.execution, Execution::searched);
    EXPECT_EQ(city.hits, 30);
    // Of a negative one, everybody would be looked at.
    const SearchStep others = second({where("First", notEqual, text("Ivo"))}, 5);
    EXPECT_EQ(others.execution, Execution::verified);
}

TEST_F(ExplainCompoundTest, OfNothing) {
    EXPECT_EQ(explain(Query::Join::all, {}).everyone, 201);
    EXPECT_EQ(explain(Query::Join::all, {}).hits, 201);
    EXPECT_EQ(explain(Query::Join::any, {}).hits, 0);
}

} // namespace
} // namespace addressbook::test
