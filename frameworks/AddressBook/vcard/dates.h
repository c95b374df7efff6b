#pragma once

// Dates without a time, between their form in vCards and the one in which they are stored: noon of the day,
// in local time.

#include "frameworks/AddressBook/values/calendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// Returns the date for "1980-03-22", "19800322", "--03-22", "--0322" or one of these with a time after it,
// which is dropped; nothing for any other text. The year [omittedYear] counts as no year.
std::optional<Date> parseDay(std::string_view text, int omittedYear);

// Returns the local day of a date as "1980-03-22", with kNoYear when it has no year; nothing for a date
// outside of the years 1 to 9999.
std::optional<std::string> dayText(Date date);

} // namespace addressbook::vcard
