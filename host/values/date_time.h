#pragma once

// Days and times of day. The calendar is the Gregorian one for all years; a day is counted from 1 January of
// year 1, which is day 1.

#include "host/values/formats.h"
#include "host/values/number.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// A day by its year, month (1 to 12) and day of the month.
struct CalendarDay {
    int year = 1;
    int month = 1;
    int day = 1;

    friend bool operator==(const CalendarDay&, const CalendarDay&) = default;
};

// A time by its parts; all are negative, or none.
struct ClockTime {
    int64_t hour = 0;
    int minute = 0;
    int second = 0;
    int microsecond = 0;
};

inline constexpr int kFirstYear = 1;
inline constexpr int kLastYear = 4000;
inline constexpr int32_t kLastDay = 1460970; // 31 December of the last year
inline constexpr int64_t kSecondsPerDay = 86400;
inline constexpr int64_t kMaxTimeSeconds = 2147483647; // the longest time, to either side of zero

bool isLeapYear(int year) noexcept;
int daysInMonth(int year, int month) noexcept;

// Whether the calendar has that day.
bool isCalendarDay(int64_t year, int64_t month, int64_t day) noexcept;

// The number of a day. Months and days outside their range carry over: month 13 is January of the next year,
// day 0 the last of the month before. Nothing when it is not in the years 1 to 4000.
std::optional<int32_t> dayNumber(int64_t year, int64_t month, int64_t day) noexcept;
CalendarDay calendarDay(int32_t dayNumber) noexcept;

// A day and a time, which may be used apart: a date has no time, a time no day.
class DateTime {
  public:
    DateTime() = default; // 1 January of year 1, 0:00:00

    // The given day must be 1 to kLastDay, the time within kMaxTimeSeconds: else NumberError.
    explicit DateTime(int32_t dayNumber, Number seconds = {});

    // Seconds from the start of day 1; nothing when that is no day of the calendar.
    static std::optional<DateTime> fromTimestampSeconds(const Number& seconds);

    // A time alone (day 1); nothing when it is longer than kMaxTimeSeconds.
    static std::optional<DateTime> fromSeconds(const Number& seconds);

    int32_t day() const noexcept { return day_; }
    // Seconds from midnight; may be negative or more than a day.
    const Number& seconds() const noexcept { return seconds_; }
    CalendarDay calendar() const noexcept { return calendarDay(day_); }
    ClockTime clock() const;

    // Seconds from the start of day 1, day and time together.
    Number timestampSeconds() const;
    // The same moment with the time inside its day. Nothing when it is no day of the calendar.
    std::optional<DateTime> normalized() const { return fromTimestampSeconds(timestampSeconds()); }

    int dayOfWeek() const noexcept { return day_ % 7 + 1; } // 1 is Sunday
    int dayOfYear() const noexcept;
    int weekOfYear() const noexcept; // 1 holds 1 January; weeks start on Sunday
    // The week of a year whose weeks start on [firstDay] (1 is Sunday) and whose first one has four days in
    // it.
    int fiscalWeekOfYear(int firstDay) const noexcept;

    // As the formats in use write them (values/formats.h); those of the United States are given here.
    std::u16string dateText() const;      // m/d/yyyy
    std::u16string timeText() const;      // h:mm:ss, with a fraction if there is one, counting on over 24
    std::u16string timestampText() const; // m/d/yyyy h:mm:ss AM

    // The day that a text names in numbers, with slashes, dashes or points between them; nothing when there
    // is none such. A year of one or two digits is the one from 70 years ago to 30 years ahead. In orders
    // other than month, day, year blanks may stand behind points, and a point behind the date.
    static std::optional<DateTime> dateFromText(std::u16string_view text,
                                                DateOrder order = formats().dateOrder);
    // The time that a text names: h:mm, h:mm:ss or h:mm:ss.fraction, with AM, PM or a minus sign if wanted.
    static std::optional<DateTime> timeFromText(std::u16string_view text);
    // A date, or a date and a time.
    static std::optional<DateTime> timestampFromText(std::u16string_view text,
                                                     DateOrder order = formats().dateOrder);

    // The local day and time.
    static DateTime now();

    friend bool operator==(const DateTime&, const DateTime&) = default;

  private:
    int32_t day_ = 1;
    Number seconds_;
};

} // namespace host
