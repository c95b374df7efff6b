#pragma once

// Days of the proleptic Gregorian calendar. A day is known by its number: the days since 1970-01-01, which is
// day 0. Local days are those of the process's time zone.

#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace addressbook {

// The epoch of Date, 2001-01-01 00:00 UTC, in seconds since 1970.
inline constexpr double kReferenceDate = 978307200;

// Returns the current time.
Date currentTime();

// A day of the year.
struct MonthDay {
    int month = 1; // 1 to 12
    int day = 1;   // 1 to 31
};

// Limit of the valid dates: they are less than this many seconds from 2001, about three million years either
// way.
inline constexpr double kFarthest = 1e14;

// Returns the number of a day; month and day must be in range.
std::int64_t dayNumber(std::int64_t year, MonthDay day);

// Returns the year in which a day lies.
std::int64_t yearOf(std::int64_t dayNumber);

// Returns when a day begins in UTC, in seconds as Date counts them. In any time zone the day begins less than
// a day before or after.
double utcMidnight(double dayNumber);

// Returns the day of a date in UTC; none when the date is not valid (NaN, infinite, beyond kFarthest).
std::optional<std::int64_t> utcDay(Date date);

// Returns the local day of a date; none when the date is not valid.
std::optional<std::int64_t> localDay(Date date);

// The year that stands for "no year" in a date; it is a leap year, so 29 February exists.
inline constexpr int kNoYear = 1604;

// Whether a value is a Date or a FloatingDate.
bool isDate(const Value& value);

// Returns noon of a day: as what dates without a time are stored.
FloatingDate noonOf(int year, MonthDay day);

// Whether a date is at noon, and so stands for one without a time.
bool isNoon(FloatingDate date);

// Returns what a clock shows at a moment in the process's time zone; none when the date is not valid.
std::optional<FloatingDate> clockAt(Date date);

// Returns the moment at which a clock shows a date in the process's time zone. Where daylight saving makes it
// show the date twice it is one of the two; where it is left out it is as much later as the clock is put
// forward.
Date momentOf(FloatingDate date);

// Returns what to store for a date that a program gives a property: a FloatingDate for birthdays and for noon,
// as which dates without a time are read; else, and when it would not be read as the same moment again (the
// second of two hours that daylight saving makes equal), the date itself.
Value storedDate(std::string_view property, Date date);

// Returns the day of a Date, in local time, or a FloatingDate as year, month and day, without the year when
// that is kNoYear; none when the date is not valid, and for values of other types.
std::optional<DateComponents> dayParts(const Value& date);

// Returns the day that a value names: the local day of a Date, the day of a FloatingDate, or the year, month
// and day of components (29 February means 28 February in a year that has none). None for components without
// one of the three or out of range, and for values of other types.
std::optional<std::int64_t> dayOf(const Value& value);

// Returns month and day of a day.
MonthDay dayOfYear(std::int64_t dayNumber);

// Returns the day of the year that a value names, as dayOf() does; components may lack the year.
std::optional<MonthDay> monthDayOf(const Value& value);

// Returns the day on which [day] falls in [year]: 29 February falls on 28 February in a year that has none.
std::int64_t anniversary(std::int64_t year, MonthDay day);

} // namespace addressbook
