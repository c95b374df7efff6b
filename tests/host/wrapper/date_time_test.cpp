#include "tests/host/wrapper/support.h"

namespace {

using fmx::DateTimeUniquePtr;
using fmx::FixPtUniquePtr;

fmx::DateTimeUniquePtr moment(fmx::int16 year, fmx::int16 month, fmx::int16 day, fmx::int64 hour = 0,
                              fmx::int16 minute = 0, fmx::int16 second = 0) {
    DateTimeUniquePtr result;
    EXPECT_EQ(result->SetNormalizedDate(month, day, year), 0);
    EXPECT_EQ(result->SetNormalizedTime(hour, minute, second, 0), 0);
    return result;
}

TEST(WrapperDateTimeTest, StartsAtTheEpoch) {
    const DateTimeUniquePtr start;
    EXPECT_EQ(start->GetYear(), 1);
    EXPECT_EQ(start->GetMonth(), 1);
    EXPECT_EQ(start->GetDay(), 1);
    EXPECT_EQ(start->GetHour(), 0);
    EXPECT_EQ(start->GetDaysSinceEpoch(), 1);
    const FixPtUniquePtr seconds(9);
    start->GetSecondsSinceEpoch(*seconds);
    EXPECT_FALSE(seconds->AsBool());
}

TEST(WrapperDateTimeTest, IsReadFromText) {
    const fmx::LocaleUniquePtr locale(fmx::Locale::kType_System);
    const DateTimeUniquePtr stamp(*hostText(u"12/25/2010 14:30:05"), *locale);
    EXPECT_TRUE(*stamp == *moment(2010, 12, 25, 14, 30, 5));
    const std::u16string text = u"2:30 PM";
    const DateTimeUniquePtr time(reinterpret_cast<const fmx::uint16*>(text.data()),
                                 static_cast<fmx::uint32>(text.size()), *locale);
    EXPECT_TRUE(*time == *moment(1, 1, 1, 14, 30));
    EXPECT_TRUE(*DateTimeUniquePtr(*hostText(u"rubbish"), *locale) == *DateTimeUniquePtr());
    EXPECT_THROW(DateTimeUniquePtr(nullptr, 3, *locale), std::exception);
}

TEST(WrapperDateTimeTest, RefusesWhatIsNoDate) {
    const auto day = moment(2010, 12, 25, 1, 2, 3);
    const fmx::int16 bad[][3] = {{13, 1, 2010}, {0, 1, 2010},  {2, 29, 2010}, {2, 30, 2000}, {4, 31, 2010},
                                 {1, 0, 2010},  {1, -1, 2010}, {1, 1, 0},     {1, 1, -5},    {1, 1, 4001}};
    for (const auto& [month, date, year] : bad) {
        EXPECT_NE(day->SetNormalizedDate(month, date, year), 0) << month << '/' << date << '/' << year;
        EXPECT_NE(
            day->SetNormalizedDate(*FixPtUniquePtr(year), *FixPtUniquePtr(month), *FixPtUniquePtr(date)), 0);
    }
    EXPECT_THROW(day->SetDaysSinceEpoch(0), std::exception);
    EXPECT_THROW(day->SetDaysSinceEpoch(1460971), std::exception);
    EXPECT_THROW(day->SetSecondsSinceEpoch(*FixPtUniquePtr(-1)), std::exception);
    EXPECT_TRUE(*day == *moment(2010, 12, 25, 1, 2, 3));
    EXPECT_EQ(day->SetNormalizedDate(2, 29, 2000), 0);
}

TEST(WrapperDateTimeTest, RefusesWhatIsNoTime) {
    const auto time = moment(2010, 12, 25, 1, 2, 3);
    EXPECT_NE(time->SetNormalizedTime(-1, 0, 0, 0), 0);
    EXPECT_NE(time->SetNormalizedTime(0, 60, 0, 0), 0);
    EXPECT_NE(time->SetNormalizedTime(0, -1, 0, 0), 0);
    EXPECT_NE(time->SetNormalizedTime(0, 0, 60, 0), 0);
    EXPECT_NE(time->SetNormalizedTime(0, 0, 0, 1'000'000), 0);
    EXPECT_NE(time->SetNormalizedTime(0, 0, 0, -1), 0);
    EXPECT_NE(time->SetNormalizedTime(INT64_MAX, 0, 0, 0), 0);
    const int bad[][3] = {{-1, 0, 0}, {0, -1, 0}, {0, 60, 0}, {0, 0, -1}, {0, 0, 60}};
    for (const auto& [hour, minute, second] : bad) {
        EXPECT_NE(
            time->SetNormalizedTime(*FixPtUniquePtr(hour), *FixPtUniquePtr(minute), *FixPtUniquePtr(second)),
            0)
            << hour << ':' << minute << ':' << second;
    }
    fmx::DataUniquePtr data;
    EXPECT_THROW(time->SetSecsSinceMidnight(numberFrom(*data, u"1e300")), std::exception);
    EXPECT_TRUE(*time == *moment(2010, 12, 25, 1, 2, 3));
}

TEST(WrapperDateTimeTest, SetsAndTellsEachPart) {
    const auto time = moment(2010, 12, 25);
    EXPECT_EQ(time->SetNormalizedTime(23, 59, 58, 250'000), 0);
    EXPECT_EQ(time->GetYear(), 2010);
    EXPECT_EQ(time->GetMonth(), 12);
    EXPECT_EQ(time->GetDay(), 25);
    EXPECT_EQ(time->GetHour(), 23);
    EXPECT_EQ(time->GetMinute(), 59);
    EXPECT_EQ(time->GetSec(), 58);
    EXPECT_EQ(time->GetUSec(), 250'000);
    const FixPtUniquePtr seconds;
    time->GetSeconds(*seconds);
    EXPECT_EQ(digitsOf(*seconds), u"58.25");
    time->GetSecsSinceMidnight(*seconds);
    EXPECT_EQ(digitsOf(*seconds), u"86398.25");
    time->GetSecondsSinceEpoch(*seconds);
    EXPECT_EQ(digitsOf(*seconds), u"63428918398.25");

    const DateTimeUniquePtr copy;
    copy->SetSecondsSinceEpoch(*seconds);
    EXPECT_TRUE(*copy == *time);
    copy->SetDaysSinceEpoch(time->GetDaysSinceEpoch() + 1);
    EXPECT_EQ(copy->GetDay(), 26);
    EXPECT_TRUE(*copy != *time);
    copy->SetSecsSinceMidnight(*FixPtUniquePtr(3661));
    EXPECT_TRUE(*copy == *moment(2010, 12, 26, 1, 1, 1));
    EXPECT_EQ(copy->SetNormalizedDate(*FixPtUniquePtr(2011), *FixPtUniquePtr(2), *FixPtUniquePtr(3)), 0);
    EXPECT_EQ(copy->SetNormalizedTime(*FixPtUniquePtr(4), *FixPtUniquePtr(5), *FixPtUniquePtr(6)), 0);
    EXPECT_TRUE(*copy == *moment(2011, 2, 3, 4, 5, 6));
}

TEST(WrapperDateTimeTest, TakesDayOrTimeOfAnother) {
    const auto a = moment(2010, 1, 2, 3, 4, 5);
    const auto b = moment(2020, 6, 7, 8, 9, 10);
    a->SetDate(*b);
    EXPECT_TRUE(*a == *moment(2020, 6, 7, 3, 4, 5));
    a->SetDate(*moment(2010, 1, 2));
    a->SetTime(*b);
    EXPECT_TRUE(*a == *moment(2010, 1, 2, 8, 9, 10));
}

TEST(WrapperDateTimeTest, KnowsTheCalendar) {
    EXPECT_TRUE(moment(2000, 1, 1)->IsLeapYear());
    EXPECT_FALSE(moment(1900, 1, 1)->IsLeapYear());
    EXPECT_EQ(moment(2010, 12, 25)->DayOfWeek(), 7);
    EXPECT_EQ(moment(2010, 12, 25)->DayOfYear(), 359);
    EXPECT_EQ(moment(2010, 12, 25)->WeekOfYear(), 52);
    const DateTimeUniquePtr now;
    now->Now();
    EXPECT_GT(now->GetYear(), 2020);
}

} // namespace
