// Searches for the days around today, which read only a part of the index, find what matches() finds: across
// turns of the year, leap days, distant years and time zones.

#include "frameworks/AddressBook/store/explain.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <ctime>
#include <map>
#include <random>

namespace addressbook::test {
namespace {

// A local moment.
Date moment(int year, int month, int day, int hour = 12) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_isdst = -1;
    return Date{static_cast<double>(std::mktime(&parts)) - 978307200};
}

class IntervalTest : public Scratch, public testing::WithParamInterface<const char*> {
  protected:
    IntervalTest() { moveTo(GetParam()); }

    // Days that are near [now] in some year, first and last hours of days, and what is no date.
    Value near(Date now) {
        if (below(12) == 0) {
            return below(2) == 0 ? Value(std::int64_t(below(1'000'000'000))) : Value("text");
        }
        const auto days = static_cast<double>(below(2) == 0 ? below(3) + 29 : below(60)) - 30;
        const std::time_t time = static_cast<std::time_t>(now.seconds + 978307200 + days * 86400);
        std::tm parts{};
        localtime_r(&time, &parts);
        constexpr int kYears[] = {0, 0, 0, -1, 1, -2, 2, -4, -22, -63, -422};
        const int year = parts.tm_year + 1900 + kYears[below(std::size(kYears))];
        constexpr int kHours[] = {0, 0, 12, 23, 23};
        if (below(4) != 0) {
            const Date date = moment(year, parts.tm_mon + 1, parts.tm_mday, kHours[below(std::size(kHours))]);
            return below(2) == 0 ? Value(date) : Value(*clockAt(date));
        }
        DateComponents components;
        if (below(2) == 0) {
            components.year = year;
        }
        components.month = parts.tm_mon + 1;
        components.day = below(8) == 0 ? 29 : parts.tm_mday;
        return components;
    }

    Value wanted() {
        constexpr double kDays[] = {0, 1, 2, 7, 29, 30, 31, 100, 182, 183, 364, 365, 366, 400, 1e9, 1e300};
        const double number = kDays[below(std::size(kDays))] * (below(2) == 0 ? 1 : -1) * 86400;
        return below(4) == 0 && std::abs(number) < 1e12 ? Value(static_cast<std::int64_t>(number))
                                                        : Value(number);
    }

    std::size_t below(std::size_t limit) { return random_() % limit; }

    std::mt19937 random_{7}; // NOLINT(cert-msc51-cpp): the same each time
};

TEST_P(IntervalTest, FindsWhatMatches) {
    Store store(folder());
    std::map<int, int> paths;
    std::size_t hits = 0;
    for (const Date now : {moment(2024, 2, 29), moment(2025, 2, 28, 23), moment(2025, 3, 1, 0),
                           moment(2025, 12, 31, 23), moment(2026, 1, 1, 0), moment(2026, 7, 15)}) {
        std::map<RowId, MemoryRecord> records;
        ChangeSet changes = changesAt(1);
        for (const RowId row : store.rows(Kind::person)) {
            changes.removed.push_back(store.find(row)->uid);
        }
        for (int i = 0; i < 200; ++i) {
            MultiValue several{{{newUuid(), "a", near(now)}, {newUuid(), "b", near(now)}}, {}};
            const std::string alone = "alone" + std::to_string(i % 100);
            changes.records.push_back(inserted(
                newUid(Kind::person), {{"Birthday", near(now)}, {"ABDate", several}, {alone, near(now)}}));
        }
        store.save(changes);
        for (std::size_t i = 0; const RowId row : store.rows(Kind::person)) {
            records.try_emplace(row, Kind::person, changes.records[i++].values);
        }
        for (int i = 0; i < 400; ++i) {
            const std::string property = below(2) == 0   ? "alone" + std::to_string(below(100))
                                         : below(3) == 0 ? "ABDate"
                                                         : "Birthday";
            Query query{Condition{Kind::person,
                                  below(3) == 0 ? "ABDate" : "Birthday",
                                  {},
                                  {},
                                  wanted(),
                                  static_cast<Comparison>(17 + below(8))}};
            auto& condition = std::get<Condition>(query.node);
            if (condition.property == "ABDate" && below(3) == 0) {
                condition.label = "b";
            }
            std::vector<RowId> expected;
            for (const auto& [row, record] : records) {
                if (matches(query, record, now)) {
                    expected.push_back(row);
                }
            }
            ASSERT_EQ(store.search(query, now), expected)
                << "comparison " << static_cast<int>(condition.comparison) << ", now " << now.seconds
                << ", wanted " << testing::PrintToString(condition.value.index());
            hits += expected.size();
            ++paths[static_cast<int>(store.explain(query, now).path)];
        }
    }
    EXPECT_GT(hits, 10'000U);
    EXPECT_GT(paths[static_cast<int>(AccessPath::interval)], 600);
    EXPECT_GT(paths[static_cast<int>(AccessPath::scan)], 100);
}

// The only date of a property, on a day that is in another year in UTC or here.
TEST_P(IntervalTest, FindsTheTurnOfTheYear) {
    Store store(folder());
    addPerson(store, {{"Birthday", moment(1980, 1, 1, 0)}, {"met", moment(1990, 12, 31, 23)}});
    for (const auto& [property, now] :
         {std::pair("Birthday", moment(2026, 1, 1)), {"met", moment(2026, 12, 31)}}) {
        for (const std::int64_t number : {0, 1, -1}) {
            EXPECT_EQ(
                found(store, query(property, Comparison::withinIntervalFromTodayYearless, days(number)), now)
                    .size(),
                1U)
                << property << " within " << number;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Zones, IntervalTest,
                         testing::Values("Europe/Berlin", "Pacific/Kiritimati", "Pacific/Pago_Pago"));

} // namespace
} // namespace addressbook::test
