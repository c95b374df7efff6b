#pragma once

// How dates, times and numbers are written as text. A file keeps the formats of the system that it was made
// on; the host is one such file, so there is one set of formats for the whole program.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// How the three numbers of a date stand in a text.
enum class DateOrder : uint8_t { monthDayYear, dayMonthYear, yearMonthDay };

struct Formats {
    std::string locale = "en_US";
    DateOrder dateOrder = DateOrder::monthDayYear;
    char16_t dateSeparator = u'/';
    bool twoDigits = false; // 05 for day and month, and for the hour of a time stamp
    char16_t timeSeparator = u':';
    bool twelveHours = true; // of time stamps
    std::u16string morning = u"AM";
    std::u16string afternoon = u"PM";
    char16_t decimalPoint = u'.';
    std::array<std::u16string, 12> monthNames{u"January",   u"February", u"March",    u"April",
                                              u"May",       u"June",     u"July",     u"August",
                                              u"September", u"October",  u"November", u"December"};
    std::array<std::u16string, 7> dayNames{u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                           u"Thursday", u"Friday", u"Saturday"};
};

// The formats in use: those of the United States until set.
const Formats& formats();

// Changes the formats in use. To be called before anything is evaluated: other threads are not guarded.
void setFormats(Formats formats);

// The order of a date's numbers that the Unicode data give for a locale.
DateOrder dateOrderOf(const std::string& locale);

// The formats that the Unicode data give for a locale such as "de_DE"; nothing for one they do not know.
std::optional<Formats> formatsOf(const std::string& locale);

} // namespace host
