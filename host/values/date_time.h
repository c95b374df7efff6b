#pragma once

// Days and times of day. The calendar is the Gregorian one for all years. The number of a day counts from 1
// January of year 1, which is day 1.

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

// A time by its parts; those of a negative time are all negative or 0.
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
inline constexpr int64_t kMaxTimeSeconds = 2147483647; // the longest time, positive or negative

bool isLeapYear(int year) noexcept;
int daysInMonth(int year, int month) noexcept;

// Whether the calendar has that day.
bool isCalendarDay(int64_t year, int64_t month, int64_t day) noexcept;

// Returns the number of a day. Months and days outside their range carry over: month 13 is January of the
// next year, day 0 the last day of the month before. Nothing when the day is not in the years 1 to 4000.
std::optional<int32_t> dayNumber(int64_t year, int64_t month, int64_t day) noexcept;
CalendarDay calendarDay(int32_t dayNumber) noexcept;

// A day and a time of day. Dates use only the day, times only the time.
class DateTime {
  public:
    DateTime() = default; // 1 January of year 1, 0:00:00

    // Throws NumberError unless the day is 1 to kLastDay and the time within kMaxTimeSeconds.
    explicit DateTime(int32_t dayNumber, Number seconds = {});

    // Returns the day and time that are [seconds] after the start of day 1; nothing when the calendar does
    // not have that day.
    static std::optional<DateTime> fromTimestampSeconds(const Number& seconds);

    // Returns a time, on day 1; nothing when it is longer than kMaxTimeSeconds.
    static std::optional<DateTime> fromSeconds(const Number& seconds);

    int32_t day() const noexcept { return day_; }
    // Returns the time in seconds from midnight; may be negative or more than a day.
    const Number& seconds() const noexcept { return seconds_; }
    CalendarDay calendar() const noexcept { return calendarDay(day_); }
    ClockTime clock() const;

    // Returns day and time as seconds from the start of day 1.
    Number timestampSeconds() const;
    // Returns this moment with a time from 0 to less than a day, which may change the day. Nothing when the
    // calendar does not have that day.
    std::optional<DateTime> normalized() const;

    int dayOfWeek() const noexcept { return day_ % 7 + 1; } // 1 is Sunday
    int dayOfYear() const noexcept;
    int weekOfYear() const noexcept; // 1 is the week of 1 January; weeks start on Sunday
    // Returns the number of the week, where weeks start on [firstDay] (1 is Sunday) and week 1 is the first
    // one with at least four days in the year.
    int fiscalWeekOfYear(int firstDay) const noexcept;

    // Return the text in the formats in use (values/formats.h); the comments show those of the United States.
    std::u16string dateText() const;      // m/d/yyyy
    std::u16string timeText() const;      // h:mm:ss, with a fraction if there is one, counting on over 24
    std::u16string timestampText() const; // m/d/yyyy h:mm:ss AM

    // Returns the date that a text gives in numbers, separated by slashes, dashes or points; nothing when it
    // gives none. A year of one or two digits is the one within 70 years ago and 30 years ahead. In orders
    // other than month, day, year, points may be followed by blanks and the date by a point.
    static std::optional<DateTime> dateFromText(std::u16string_view text,
                                                DateOrder order = formats().dateOrder);
    // Returns the time that a text gives: h:mm, h:mm:ss or h:mm:ss.fraction, optionally with AM, PM or a
    // minus sign; nothing when it gives none.
    static std::optional<DateTime> timeFromText(std::u16string_view text);
    // Returns the time stamp that a text gives: a date, optionally followed by a time; nothing when it gives
    // none.
    static std::optional<DateTime> timestampFromText(std::u16string_view text,
                                                     DateOrder order = formats().dateOrder);

    // Returns the current local day and time.
    static DateTime now();

    friend bool operator==(const DateTime&, const DateTime&) = default;

  private:
    int32_t day_ = 1;
    Number seconds_;
};

} // namespace host
