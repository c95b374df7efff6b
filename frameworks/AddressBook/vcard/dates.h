#pragma once

// Dates without a time, between their form in vCards and the one in which they are stored: noon of the day.

#include "frameworks/AddressBook/values/calendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// Returns the date for "1980-03-22", "19800322", "--03-22", "--0322" or one of these with a time after it,
// which is dropped; nothing for any other text. The year [omittedYear] counts as no year.
std::optional<FloatingDate> parseDay(std::string_view text, int omittedYear);

// Returns the day of a date, the local one of a moment, as "1980-03-22", with kNoYear when it has no year;
// nothing for a value that is no date, and outside of the years 1 to 9999.
std::optional<std::string> dayText(const Value& date);

} // namespace addressbook::vcard
