#pragma once

// Dates as people write them: ISO, digits in the order of the locale, month names, and words like "next
// friday".

#include <optional>
#include <string_view>

namespace foundation {

// A date and time of the calendar, in no particular time zone.
struct CivilTime {
    int year = 1970;
    int month = 1; // 1 to 12
    int day = 1;
    int hour = 12;
    int minute = 0;
    int second = 0;
    bool operator==(const CivilTime&) const = default;
};

// What a text says: a time on the user's clock, or, with an offset, on a clock so many seconds east of
// Greenwich.
struct NaturalDate {
    CivilTime time;
    std::optional<int> offset;
};

// Reads a text; nothing when any of it is not understood or the date does not exist. [now] is what "today"
// and "1 hour ago" count from, on the user's clock. A date without a time means noon. [dayFirst] is the order
// of day and month between slashes; two digits of a year mean the year from 80 years ago to 19 years ahead.
std::optional<NaturalDate> parseNaturalDate(std::string_view text, const CivilTime& now, bool dayFirst);

} // namespace foundation
