#pragma once

// Days of the calendar, counted from 1970-01-01, in the process's time zone and the proleptic Gregorian
// calendar.

#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <optional>

namespace addressbook {

// What Date counts from, 2001-01-01 00:00 UTC, in seconds since 1970.
inline constexpr double kReferenceDate = 978307200;

// This moment.
Date currentTime();

// A day of the year.
struct MonthDay {
    int month = 1; // 1 to 12
    int day = 1;   // 1 to 31
};

// Moments are less than so many seconds from 2001: some three million years either way.
inline constexpr double kFarthest = 1e14;

// The number of a day; month and day must be in range.
std::int64_t dayNumber(std::int64_t year, MonthDay day);

// The year in which a day lies.
std::int64_t yearOf(std::int64_t dayNumber);

// The second of Date at which a day begins in UTC; in other time zones it is up to a day away.
double utcMidnight(double dayNumber);

// The day of a moment in UTC; none for what is no moment.
std::optional<std::int64_t> utcDay(Date date);

// The local day of a moment; none for what is no moment (NaN, infinite, beyond the calendar).
std::optional<std::int64_t> localDay(Date date);

// The year that stands for "no year" in a date; it is a leap year, so 29 February exists.
inline constexpr int kNoYear = 1604;

// The noon, in local time, of a day: what dates without a time are stored as.
Date localNoon(int year, MonthDay day);

// The local day of a moment as year, month and day, without the year when that is kNoYear; none for what is
// no moment.
std::optional<DateComponents> dayParts(Date date);

// The day that a value names: of a date its local day, of components their year, month and day.
std::optional<std::int64_t> dayOf(const Value& value);

// The day of the year on which a day falls.
MonthDay dayOfYear(std::int64_t dayNumber);

// The day of the year that a value names; components may lack the year.
std::optional<MonthDay> monthDayOf(const Value& value);

// The day on which [day] falls in [year]: 29 February falls on 28 February in a year that has none.
std::int64_t anniversary(std::int64_t year, MonthDay day);

} // namespace addressbook
