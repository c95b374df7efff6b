#include "host/values/date_time.h"

#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {

namespace {

Number number(std::u16string_view text) {
    return Number::fromText(text);
}
std::string shown(const std::optional<DateTime>& moment) {
    return moment ? toUtf8(moment->timestampText()) : "none";
}

TEST(DateTimeTest, CountsEveryDayOfTheCalendar) {
    int32_t expected = 0;
    for (int year = kFirstYear; year <= kLastYear; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= daysInMonth(year, month); ++day) {
                ++expected;
                ASSERT_EQ(dayNumber(year, month, day), expected);
                ASSERT_EQ(calendarDay(expected), (CalendarDay{year, month, day}));
            }
        }
    }
    EXPECT_EQ(expected, kLastDay);
    EXPECT_EQ(dayNumber(1970, 1, 1), 719163);
    EXPECT_EQ(dayNumber(2000, 3, 1), 730180);
}

TEST(DateTimeTest, CarriesOver) {
    EXPECT_EQ(dayNumber(2010, 14, 1), dayNumber(2011, 2, 1));
    EXPECT_EQ(dayNumber(2010, 0, 1), dayNumber(2009, 12, 1));
    EXPECT_EQ(dayNumber(2010, -11, 1), dayNumber(2009, 1, 1));
    EXPECT_EQ(dayNumber(2010, 3, 0), dayNumber(2010, 2, 28));
    EXPECT_EQ(dayNumber(2010, 2, 30), dayNumber(2010, 3, 2));
    EXPECT_EQ(dayNumber(-5, 12 * 6 + 1, 1), dayNumber(1, 1, 1));
    EXPECT_EQ(dayNumber(1, 1, 0), std::nullopt);
    EXPECT_EQ(dayNumber(0, 12, 31), std::nullopt);
    EXPECT_EQ(dayNumber(4000, 12, 32), std::nullopt);
    EXPECT_EQ(dayNumber(INT64_MAX, INT64_MIN, INT64_MAX), std::nullopt);
    EXPECT_FALSE(isCalendarDay(2010, 2, 29));
    EXPECT_TRUE(isCalendarDay(2000, 2, 29));
    EXPECT_FALSE(isCalendarDay(1900, 2, 29));
    EXPECT_FALSE(isCalendarDay(2010, 13, 1));
    EXPECT_FALSE(isCalendarDay(2010, 1, 0));
    EXPECT_FALSE(isCalendarDay(4001, 1, 1));
}

TEST(DateTimeTest, KnowsDaysAndWeeks) {
    const DateTime day(*dayNumber(2010, 12, 25));
    EXPECT_EQ(day.dayOfWeek(), 7); // a Saturday
    EXPECT_EQ(day.dayOfYear(), 359);
    EXPECT_EQ(day.weekOfYear(), 52);
    EXPECT_EQ(DateTime(*dayNumber(2010, 1, 1)).weekOfYear(), 1); // a Friday
    EXPECT_EQ(DateTime(*dayNumber(2010, 1, 2)).weekOfYear(), 1);
    EXPECT_EQ(DateTime(*dayNumber(2010, 1, 3)).weekOfYear(), 2);
    EXPECT_EQ(DateTime(*dayNumber(2012, 12, 31)).weekOfYear(), 53);
    EXPECT_EQ(DateTime(1).dayOfWeek(), 2); // a Monday
}

TEST(DateTimeTest, RefusesWhatIsNoDay) {
    EXPECT_THROW(DateTime(0), NumberError);
    EXPECT_THROW(DateTime(kLastDay + 1), NumberError);
    EXPECT_THROW(DateTime(1, kMaxTimeSeconds + 1), NumberError);
    EXPECT_EQ(DateTime::fromSeconds(-kMaxTimeSeconds - 1), std::nullopt);
    EXPECT_EQ(DateTime::fromTimestampSeconds(-1), std::nullopt);
    EXPECT_EQ(DateTime::fromTimestampSeconds(kLastDay * kSecondsPerDay), std::nullopt);
    EXPECT_EQ(DateTime::fromTimestampSeconds(number(u"1e300")), std::nullopt);
}

TEST(DateTimeTest, CountsSeconds) {
    EXPECT_EQ(shown(DateTime::fromTimestampSeconds(0)), "1/1/0001 12:00:00 AM");
    EXPECT_EQ(shown(DateTime::fromTimestampSeconds(62135596800)), "1/1/1970 12:00:00 AM");
    EXPECT_EQ(shown(DateTime::fromTimestampSeconds(kLastDay * kSecondsPerDay - 1)), "12/31/4000 11:59:59 PM");
    EXPECT_EQ(DateTime(719163, 61).timestampSeconds(), 62135596861);
    EXPECT_EQ(shown(DateTime(1, 90000).normalized()), "1/2/0001 1:00:00 AM");
    EXPECT_EQ(shown(DateTime(2, -1).normalized()), "1/1/0001 11:59:59 PM");
    EXPECT_EQ(DateTime(1, -1).normalized(), std::nullopt);
}

TEST(DateTimeTest, TellsItsParts) {
    const ClockTime clock = DateTime(1, number(u"3723.25")).clock();
    EXPECT_EQ(clock.hour, 1);
    EXPECT_EQ(clock.minute, 2);
    EXPECT_EQ(clock.second, 3);
    EXPECT_EQ(clock.microsecond, 250'000);
    const ClockTime negative = DateTime(1, number(u"-3723.25")).clock();
    EXPECT_EQ(negative.hour, -1);
    EXPECT_EQ(negative.second, -3);
    EXPECT_EQ(negative.microsecond, -250'000);
}

TEST(DateTimeTest, WritesText) {
    const DateTime moment(*dayNumber(2010, 3, 5), number(u"36061.5"));
    EXPECT_EQ(moment.dateText(), u"3/5/2010");
    EXPECT_EQ(moment.timeText(), u"10:01:01.5");
    EXPECT_EQ(moment.timestampText(), u"3/5/2010 10:01:01.5 AM");
    EXPECT_EQ(DateTime(1, -3600).timeText(), u"-1:00:00");
    EXPECT_EQ(DateTime(1, number(u"-.25")).timeText(), u"-0:00:00.25");
    EXPECT_EQ(DateTime(1, 360000).timeText(), u"100:00:00");
    EXPECT_EQ(DateTime(1).dateText(), u"1/1/0001");
}

TEST(DateTimeTest, ReadsDates) {
    const auto read = [](std::u16string_view text) { return shown(DateTime::dateFromText(text)); };
    EXPECT_EQ(read(u"12/25/2010"), "12/25/2010 12:00:00 AM");
    EXPECT_EQ(read(u" 02-05-0033 "), "2/5/0033 12:00:00 AM");
    EXPECT_EQ(read(u"2.5.2010"), "2/5/2010 12:00:00 AM");
    // Two digits are a year from 70 years ago to 30 years ahead.
    const int last = DateTime::now().calendar().year + 30;
    const auto year = [](int number) {
        return fromUtf8("1/2/" + std::to_string(number % 100 + 100).substr(1));
    };
    EXPECT_EQ(DateTime::dateFromText(year(last))->calendar().year, last);
    EXPECT_EQ(DateTime::dateFromText(year(last + 1))->calendar().year, last - 99);
    for (const auto* bad :
         {u"", u"x", u"13/1/2010", u"2/29/2010", u"2/5", u"2/5/20100", u"2/5-2010", u"2/5/2010x", u"2//2010",
          u"0/1/2010", u"1/1/0000", u"1/1/4001", u"123/1/2010", u"2/5/2010 1:00"}) {
        EXPECT_EQ(read(bad), "none") << toUtf8(bad);
    }
}

TEST(DateTimeTest, ReadsTimes) {
    const auto read = [](std::u16string_view text) {
        const auto time = DateTime::timeFromText(text);
        return time ? toUtf8(time->timeText()) : "none";
    };
    EXPECT_EQ(read(u"1:02"), "1:02:00");
    EXPECT_EQ(read(u"01:02:03.250"), "1:02:03.25");
    EXPECT_EQ(read(u"-100:00:01"), "-100:00:01");
    EXPECT_EQ(read(u"12:30 am"), "0:30:00");
    EXPECT_EQ(read(u"12:30PM"), "12:30:00");
    EXPECT_EQ(read(u"1:30 PM"), "13:30:00");
    EXPECT_EQ(read(u"13:00 PM"), "13:00:00");
    for (const auto* bad : {u"", u"1", u"1:60", u"1:00:60", u"1:2:3:4", u"0:30 AM", u"1:00 P", u"-1:00 PM",
                            u"9999999:00", u":30", u"1: 30", u"1:0x"}) {
        EXPECT_EQ(read(bad), "none") << toUtf8(bad);
    }
}

TEST(DateTimeTest, ReadsTimestamps) {
    const auto read = [](std::u16string_view text) { return shown(DateTime::timestampFromText(text)); };
    EXPECT_EQ(read(u"12/25/2010 14:30"), "12/25/2010 2:30:00 PM");
    EXPECT_EQ(read(u"12/25/2010  2:30:01.5 PM "), "12/25/2010 2:30:01.5 PM");
    EXPECT_EQ(read(u"12/25/2010"), "12/25/2010 12:00:00 AM");
    EXPECT_EQ(read(u"12/25/2010 24:00:01"), "12/26/2010 12:00:01 AM");
    for (const auto* bad : {u"", u"14:30", u"12/25/201014:30", u"12/25/2010 x", u"1/1/0001 -1:00"}) {
        EXPECT_EQ(read(bad), "none") << toUtf8(bad);
    }
}

TEST(DateTimeTest, NowIsADayOfTheCalendar) {
    const DateTime now = DateTime::now();
    EXPECT_GT(now.calendar().year, 2020);
    EXPECT_GE(now.seconds(), 0);
    EXPECT_LT(now.seconds(), kSecondsPerDay + 1);
}

} // namespace

} // namespace host
