#pragma once

// How dates, times and numbers are written as text. In FileMaker a file keeps the formats of the system on
// which it was made. The host counts as one file, so the whole program has one set of formats.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// The order of the three numbers of a date.
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

// Returns the formats in use: those of the United States until setFormats() is called.
const Formats& formats();

// Changes the formats in use. Call it before anything is evaluated, as it is not thread-safe.
void setFormats(Formats formats);

// Returns the order of a date's numbers in a locale, by Unicode's locale data.
DateOrder dateOrderOf(const std::string& locale);

// Returns the names of the locales that formatsOf() knows.
std::vector<std::string> knownLocales();

// Returns the formats of a locale such as "de_DE", by Unicode's locale data; nothing for an unknown locale.
std::optional<Formats> formatsOf(const std::string& locale);

} // namespace host
