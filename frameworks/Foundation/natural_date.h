#pragma once

// Reading dates as people write them: ISO, numeric dates in the order of the locale, month names, and words
// like "next friday".

#include <optional>
#include <string_view>

namespace foundation {

// A date and time, without a time zone.
struct CivilTime {
    int year = 1970;
    int month = 1; // 1 to 12
    int day = 1;
    int hour = 12;
    int minute = 0;
    int second = 0;
    bool operator==(const CivilTime&) const = default;
};

// The date that a text gives: in the user's time zone, or with an offset in one that is so many seconds east
// of UTC.
struct NaturalDate {
    CivilTime time;
    std::optional<int> offset;
};

// Returns the date in a text; nothing when any part of the text is not understood, or the date does not
// exist. [now] is the user's local time, for "today" and "1 hour ago". A date without a time means noon.
// [dayFirst] is the order of day and month between slashes. A year of two digits is the one within 80 years
// ago and 19 years ahead.
std::optional<NaturalDate> parseNaturalDate(std::string_view text, const CivilTime& now, bool dayFirst);

} // namespace foundation
