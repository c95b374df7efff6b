// Days, dates and clocks: leap years, what is no day, and what lies beyond all calendars.

#include "frameworks/AddressBook/values/calendar.h"

#include "frameworks/AddressBook/values/property.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

namespace addressbook {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class CalendarTest : public testing::Test {
  protected:
    CalendarTest() { use("Europe/Berlin"); }
    ~CalendarTest() override { use("UTC"); }
    static void use(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    static DateComponents parts(std::optional<int> year, std::optional<int> month, std::optional<int> day) {
        DateComponents components;
        components.year = year;
        components.month = month;
        components.day = day;
        return components;
    }
};

TEST_F(CalendarTest, LeapDaysAreKeptInLeapYearsOnly) {
    const MonthDay leap{2, 29};
    const auto lastOfFebruary = [&](std::int64_t year) { return dayOfYear(anniversary(year, leap)).day; };
    EXPECT_EQ(lastOfFebruary(2023), 28);
    EXPECT_EQ(lastOfFebruary(2024), 29);
    EXPECT_EQ(lastOfFebruary(1900), 28) << "a century is no leap year";
    EXPECT_EQ(lastOfFebruary(2000), 29) << "but every fourth is";
    EXPECT_EQ(lastOfFebruary(-400), 29);
}

TEST_F(CalendarTest, NumbersOfDaysAndDatesAreOneToOne) {
    EXPECT_EQ(dayNumber(1970, {1, 1}), 0);
    EXPECT_EQ(dayNumber(2000, {3, 1}), 11017);
    for (std::int64_t day = -800'000; day < 800'000; day += 97) {
        ASSERT_EQ(dayNumber(yearOf(day), dayOfYear(day)), day);
    }
}

TEST_F(CalendarTest, ComponentsNameADayOrNone) {
    EXPECT_EQ(dayOf(parts(1970, 1, 2)), 1);
    const DateComponents none[] = {parts({}, 1, 2),    parts(1970, {}, 2), parts(1970, 1, {}),
                                   parts(1970, 0, 2),  parts(1970, 13, 2), parts(1970, 1, 0),
                                   parts(1970, 1, 32), parts(1970, 4, 31), parts(1970, 2, 30)};
    for (const DateComponents& wrong : none) {
        EXPECT_EQ(dayOf(wrong), std::nullopt);
    }
    EXPECT_EQ(monthDayOf(parts({}, 2, 29))->day, 29) << "whatever the year";
    EXPECT_EQ(monthDayOf(parts({}, 2, 30)), std::nullopt);
    EXPECT_EQ(monthDayOf(std::string("1970")), std::nullopt);
    EXPECT_EQ(dayOf(std::string("1970")), std::nullopt);
}

TEST_F(CalendarTest, ADateHasParts) {
    const auto day = dayParts(noonOf(1990, {5, 6}));
    ASSERT_TRUE(day);
    EXPECT_EQ(*day, parts(1990, 5, 6));
    EXPECT_EQ(dayParts(noonOf(kNoYear, {5, 6})), parts({}, 5, 6)) << "the year that stands for none";
    EXPECT_EQ(dayParts(std::string("1990")), std::nullopt);
    EXPECT_EQ(dayParts(Date{kInfinity}), std::nullopt);
}

TEST_F(CalendarTest, WhatIsNoMomentHasNoDay) {
    for (const double seconds : {kInfinity, -kInfinity, kNaN, kFarthest, -kFarthest}) {
        SCOPED_TRACE(seconds);
        EXPECT_EQ(localDay(Date{seconds}), std::nullopt);
        EXPECT_EQ(utcDay(Date{seconds}), std::nullopt);
        EXPECT_EQ(clockAt(Date{seconds}), std::nullopt);
        EXPECT_EQ(monthDayOf(FloatingDate{seconds}), std::nullopt);
        const Date same = momentOf(FloatingDate{seconds});
        EXPECT_TRUE(same.seconds == seconds || std::isnan(seconds));
        EXPECT_NE(storedDate(property::kBirthday, Date{seconds}).as<Date>(), nullptr) << "is kept as it is";
    }
}

// Birthdays float, and so does what was given at noon; a moment with another time does not.
TEST_F(CalendarTest, ADayFloatsAndAMomentDoesNot) {
    const Date noon = momentOf(noonOf(1990, {5, 6}));
    EXPECT_NE(storedDate("anything", noon).as<FloatingDate>(), nullptr);
    EXPECT_NE(storedDate("anything", Date{noon.seconds + 1}).as<Date>(), nullptr);
    EXPECT_NE(storedDate(property::kBirthday, Date{noon.seconds + 1}).as<FloatingDate>(), nullptr);
}

// On 31 October 2010 the clock showed 2:30 twice. It stands for one of the two moments; the other one would move.
TEST_F(CalendarTest, OfTwoMomentsOfOneClockOneFloats) {
    const FloatingDate clock{noonOf(2010, {10, 31}).seconds - 9.5 * 3600};
    const Date floats = momentOf(clock);
    EXPECT_NE(storedDate(property::kBirthday, floats).as<FloatingDate>(), nullptr);
    int others = 0;
    for (const double hour : {-3600.0, 3600.0}) {
        const Date other{floats.seconds + hour};
        if (clockAt(other)->seconds == clock.seconds) {
            ++others;
            EXPECT_NE(storedDate(property::kBirthday, other).as<Date>(), nullptr);
        }
    }
    EXPECT_EQ(others, 1);
}

} // namespace
} // namespace addressbook
