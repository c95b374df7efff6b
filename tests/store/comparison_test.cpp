// The meaning of each comparison, case by case, on records in memory.

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/comparison.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <cmath>
#include <ctime>

namespace addressbook::test {
namespace {

using enum Comparison;

// Noon, local time.
Date noon(std::int64_t year, int month, int day) {
    std::tm parts{};
    parts.tm_year = static_cast<int>(year - 1900);
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = 12;
    parts.tm_isdst = -1;
    return Date{static_cast<double>(mktime(&parts)) - 978307200};
}

DateComponents components(std::optional<int> year, int month, int day) {
    DateComponents parts;
    parts.year = year;
    parts.month = month;
    parts.day = day;
    return parts;
}

class ComparisonsTest : public Scratch {
  protected:
    // Whether a person with [value] as property "p" meets the comparison with [wanted].
    static bool meets(const Value& value, Comparison comparison, const Value& wanted, Date now = Date{0}) {
        return matches(query("p", comparison, wanted), MemoryRecord(Kind::person, {{"p", value}}), now);
    }
    static bool meetsWith(const Value& value, std::optional<std::string> label,
                          std::optional<std::string> key, const Value& wanted,
                          Comparison comparison = equal) {
        return matches(
            Query{Condition{Kind::person, "p", std::move(label), std::move(key), wanted, comparison}},
            MemoryRecord(Kind::person, {{"p", value}}), Date{0});
    }
};

TEST_F(ComparisonsTest, TextComparesByCodePointsInComposedForm) {
    EXPECT_TRUE(meets(text("e\u0301a"), equal, text("\u00E9a")));
    EXPECT_FALSE(meets(text("Ea"), equal, text("ea")));
    EXPECT_TRUE(meets(text("Ea"), notEqual, text("ea")));
    EXPECT_TRUE(meets(text("Straße"), equalCaseInsensitive, text("STRASSE")));
    EXPECT_FALSE(meets(text("é"), equalCaseInsensitive, text("E")));
    EXPECT_FALSE(meets(text("Straße"), notEqualCaseInsensitive, text("strasse")));
    EXPECT_TRUE(meets(text("Z"), lessThan, text("a")));
    EXPECT_FALSE(meets(text("a"), lessThan, text("a")));
    EXPECT_TRUE(meets(text("a"), lessThanOrEqual, text("a")));
    EXPECT_TRUE(meets(text("\U0001F600"), greaterThan, text("\uFF5E"))); // not so in UTF-16
    EXPECT_TRUE(meets(text("a"), greaterThanOrEqual, text("a")));
}

TEST_F(ComparisonsTest, PartsOfText) {
    EXPECT_TRUE(meets(text("Anderson"), containsSubString, text("ders")));
    EXPECT_FALSE(meets(text("Anderson"), containsSubString, text("DERS")));
    EXPECT_TRUE(meets(text("Anderson"), containsSubStringCaseInsensitive, text("DERS")));
    EXPECT_TRUE(meets(text("Anderson"), doesNotContainSubString, text("DERS")));
    EXPECT_FALSE(meets(text("Anderson"), doesNotContainSubStringCaseInsensitive, text("DERS")));
    EXPECT_TRUE(meets(text("Anderson"), prefixMatch, text("And")));
    EXPECT_FALSE(meets(text("Anderson"), prefixMatch, text("and")));
    EXPECT_TRUE(meets(text("Anderson"), prefixMatchCaseInsensitive, text("and")));
    EXPECT_TRUE(meets(text("Anderson"), suffixMatch, text("son")));
    EXPECT_FALSE(meets(text("Anderson"), suffixMatch, text("Son")));
    EXPECT_TRUE(meets(text("Anderson"), suffixMatchCaseInsensitive, text("SON")));
    EXPECT_TRUE(meets(text("x"), containsSubString, text("")));
}

TEST_F(ComparisonsTest, NumbersCompareExactlyAcrossTheirTypes) {
    EXPECT_TRUE(meets(number(3), equal, 3.0));
    EXPECT_TRUE(meets(2.5, lessThan, number(3)));
    EXPECT_TRUE(meets(number(9007199254740993), greaterThan, 9007199254740992.0));
    EXPECT_FALSE(meets(number(9007199254740993), equal, 9007199254740992.0));
    EXPECT_TRUE(meets(number(INT64_MAX), lessThan, 0x1p63));
    EXPECT_TRUE(meets(number(INT64_MIN), equal, -0x1p63));
    EXPECT_FALSE(meets(std::nan(""), lessThanOrEqual, number(1)));
    EXPECT_TRUE(meets(std::nan(""), notEqual, std::nan("")));
    EXPECT_TRUE(meets(number(-2), equalCaseInsensitive, number(-2)));
    EXPECT_TRUE(meets(Date{1}, lessThan, Date{2}));
    EXPECT_FALSE(meets(Date{1}, equal, number(1)));
    EXPECT_FALSE(meets(text("1"), equal, number(1)));
}

TEST_F(ComparisonsTest, BitFields) {
    EXPECT_TRUE(meets(number(7), bitsInBitFieldMatch, number(5)));
    EXPECT_FALSE(meets(number(6), bitsInBitFieldMatch, number(5)));
    EXPECT_TRUE(meets(number(0), bitsInBitFieldMatch, number(0)));
    EXPECT_FALSE(meets(7.0, bitsInBitFieldMatch, number(5)));
}

TEST_F(ComparisonsTest, OtherTypesAreEqualOrNot) {
    EXPECT_TRUE(meets(Bytes{1, 2}, equal, Bytes{1, 2}));
    EXPECT_FALSE(meets(Bytes{1, 2}, lessThan, Bytes{3}));
    EXPECT_TRUE(meets(Array{text("e\u0301")}, equal, Array{text("é")}));
    EXPECT_TRUE(meets(components({}, 2, 3), equal, components({}, 2, 3)));
    EXPECT_FALSE(meets(components({}, 2, 3), equal, components(2001, 2, 3)));
    EXPECT_TRUE(meets(Dictionary{{"k", number(1)}}, equal, Dictionary{{"k", 1.0}}));
}

TEST_F(ComparisonsTest, SomeEntryOrFieldIsEnoughAndNoneMayMeetANegativeOne) {
    const Value phones = MultiValue{{{"1", "home", text("12")}, {"2", "work", text("34")}}, ""};
    EXPECT_TRUE(meets(phones, equal, text("34")));
    EXPECT_FALSE(meets(phones, notEqual, text("34")));
    EXPECT_TRUE(meets(phones, notEqual, text("5")));
    EXPECT_TRUE(meetsWith(phones, "work", {}, text("34")));
    EXPECT_FALSE(meetsWith(phones, "home", {}, text("34")));
    EXPECT_FALSE(meetsWith(phones, "Work", {}, text("34")));
    EXPECT_TRUE(meetsWith(phones, "home", {}, text("34"), notEqual));
    EXPECT_TRUE(meetsWith(phones, {}, "any", text("34")));      // no dictionary: the key says nothing
    EXPECT_TRUE(meetsWith(text("34"), "home", {}, text("34"))); // no entries: nor does the label
    const Value address = Dictionary{{"City", text("Ulm")}, {"Street", text("Gasse 1")}};
    EXPECT_TRUE(meets(address, containsSubString, text("Gas")));
    EXPECT_TRUE(meetsWith(address, {}, "City", text("Ulm")));
    EXPECT_FALSE(meetsWith(address, {}, "Street", text("Ulm")));
    EXPECT_FALSE(meetsWith(address, {}, "Country", Value()));
    const Value both =
        MultiValue{{{"1", "home", address}, {"2", "work", Dictionary{{"City", text("Bonn")}}}}, ""};
    EXPECT_TRUE(meetsWith(both, "work", "City", text("Bonn")));
    EXPECT_FALSE(meetsWith(both, "work", "City", text("Ulm")));
}

TEST_F(ComparisonsTest, WithoutAValueEqualAsksWhetherThereIsOne) {
    EXPECT_TRUE(meets(text(""), equal, Value()));
    EXPECT_FALSE(meets(text(""), notEqual, Value()));
    EXPECT_FALSE(meets(Value(), equal, Value()));
    EXPECT_TRUE(meets(Value(), notEqual, Value()));
    EXPECT_TRUE(meets(MultiValue{}, notEqual, Value()));
    for (int i = 0; i < kComparisonCount; ++i) {
        const auto comparison = static_cast<Comparison>(i);
        if (comparison == equal || comparison == notEqual) {
            continue;
        }
        EXPECT_FALSE(meets(text("x"), comparison, Value())) << i;
        EXPECT_FALSE(meets(Value(), comparison, Value())) << i;
    }
    EXPECT_TRUE(meets(Value(), notEqual, text("x")));
    EXPECT_TRUE(meets(Value(), doesNotContainSubString, text("x")));
    EXPECT_TRUE(meets(Value(), notWithinIntervalFromToday, number(1)));
}

TEST_F(ComparisonsTest, IntervalsCountCalendarDays) {
    const Date now{noon(2026, 3, 28).seconds + 11.5 * 3600}; // 23:30, the clocks change in the night
    EXPECT_TRUE(meets(noon(2026, 3, 29), withinIntervalAroundToday, days(1), now));
    EXPECT_FALSE(meets(noon(2026, 3, 29), withinIntervalAroundToday, number(86399), now)); // whole days count
    EXPECT_TRUE(meets(noon(2026, 3, 27), withinIntervalAroundToday, days(1), now));
    EXPECT_FALSE(meets(noon(2026, 3, 30), withinIntervalAroundToday, days(1), now));
    EXPECT_TRUE(meets(noon(2026, 3, 30), notWithinIntervalAroundToday, days(1), now));
    EXPECT_FALSE(meets(now, withinIntervalAroundToday, days(-1), now));
    EXPECT_TRUE(meets(noon(2026, 3, 29), withinIntervalFromToday, days(1), now));
    EXPECT_TRUE(meets(noon(2026, 3, 28), withinIntervalFromToday, days(0), now));
    EXPECT_FALSE(meets(noon(2026, 3, 27), withinIntervalFromToday, days(1), now));
    EXPECT_TRUE(meets(noon(2026, 3, 27), withinIntervalFromToday, days(-1), now));
    EXPECT_FALSE(meets(noon(2026, 3, 29), withinIntervalFromToday, days(-1), now));
    EXPECT_TRUE(meets(components(2026, 3, 30), withinIntervalFromToday, days(2), now));
    EXPECT_FALSE(meets(components({}, 3, 30), withinIntervalFromToday, days(2), now));
    EXPECT_TRUE(meets(components({}, 3, 30), withinIntervalFromTodayYearless, days(2), now));
    EXPECT_FALSE(meets(text("soon"), withinIntervalAroundToday, days(9), now));
    EXPECT_FALSE(meets(now, withinIntervalAroundToday, text("9"), now));
    EXPECT_TRUE(meets(now, notWithinIntervalAroundToday, text("9"), now));
    EXPECT_FALSE(meets(Date{1e300}, withinIntervalAroundToday, number(INT64_MAX), now));
}

TEST_F(ComparisonsTest, YearlessIntervalsCrossTheYear) {
    const Date newYearsEve = noon(2026, 12, 31);
    const Date newYear = noon(2027, 1, 1);
    EXPECT_TRUE(meets(noon(1970, 1, 2), withinIntervalFromTodayYearless, days(2), newYearsEve));
    EXPECT_FALSE(meets(noon(1970, 1, 3), withinIntervalFromTodayYearless, days(2), newYearsEve));
    EXPECT_TRUE(meets(noon(1970, 12, 30), withinIntervalAroundTodayYearless, days(2), newYear));
    EXPECT_FALSE(meets(noon(1970, 12, 30), withinIntervalFromTodayYearless, days(2), newYear));
    EXPECT_TRUE(meets(noon(1970, 12, 30), withinIntervalFromTodayYearless, days(-2), newYear));
    EXPECT_TRUE(meets(noon(1970, 12, 30), withinIntervalFromTodayYearless, days(364), newYear));
    EXPECT_TRUE(meets(noon(1970, 12, 30), notWithinIntervalFromTodayYearless, days(2), newYear));
}

TEST_F(ComparisonsTest, TheLeapDayFallsOnTheLastOfFebruary) {
    EXPECT_TRUE(meets(noon(2000, 2, 29), withinIntervalFromTodayYearless, days(0), noon(2027, 2, 28)));
    EXPECT_FALSE(meets(noon(2000, 2, 29), withinIntervalFromTodayYearless, days(0), noon(2028, 2, 28)));
    EXPECT_TRUE(meets(components({}, 2, 29), withinIntervalFromTodayYearless, days(0), noon(2028, 2, 29)));
    EXPECT_FALSE(
        meets(components({}, 2, 30), withinIntervalAroundTodayYearless, days(400), noon(2028, 2, 29)));
}

TEST_F(ComparisonsTest, RecordsOfAnotherKindAreNeverFound) {
    const MemoryRecord group(Kind::group, {{"p", text("x")}});
    EXPECT_FALSE(matches(query("p", equal, text("x")), group, Date{0}));
    EXPECT_FALSE(matches(query("p", notEqual, text("y")), group, Date{0}));
}

TEST_F(ComparisonsTest, InternalPropertiesAreNeverSet) {
    const MemoryRecord person(Kind::person, {{".VCardLines", text("x")}});
    EXPECT_FALSE(matches(query(".VCardLines", equal, text("x")), person, Date{0}));
    EXPECT_TRUE(matches(query(".VCardLines", notEqual, Value()), person, Date{0}));
}

TEST_F(ComparisonsTest, CompoundsJoinTheirChildren) {
    const MemoryRecord person(Kind::person, {{"a", text("1")}, {"b", text("2")}});
    const Query yes = query("a", equal, text("1"));
    const Query no = query("b", equal, text("1"));
    const auto joined = [](Query::Join join, std::vector<Query> children) {
        return Query{Query::Compound{join, std::move(children)}};
    };
    EXPECT_FALSE(matches(joined(Query::Join::all, {yes, no}), person, Date{0}));
    EXPECT_TRUE(matches(joined(Query::Join::any, {yes, no}), person, Date{0}));
    EXPECT_TRUE(matches(joined(Query::Join::all, {}), person, Date{0}));
    EXPECT_FALSE(matches(joined(Query::Join::any, {}), person, Date{0}));
}

TEST(CalendarTest, NumbersDays) {
    EXPECT_EQ(dayNumber(1970, {1, 1}), 0);
    EXPECT_EQ(dayNumber(2000, {3, 1}), 11017);
    EXPECT_EQ(dayNumber(1, {1, 1}), -719162);
    for (std::int64_t day = -800000; day < 800000; day += 17) {
        const std::int64_t year = yearOf(day);
        EXPECT_LE(dayNumber(year, {1, 1}), day);
        EXPECT_GT(dayNumber(year + 1, {1, 1}), day);
    }
}

} // namespace
} // namespace addressbook::test
