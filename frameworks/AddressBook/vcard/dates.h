#pragma once

// Dates without a time: how vCards write them, and the noon of that day in local time as which they are
// stored.

#include "frameworks/AddressBook/values/calendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// The moment for "1980-03-22", "19800322", "--03-22", "--0322" or one of them with a time behind it, which is
// dropped; nothing when it is no such date. A year of [omittedYear] counts as none.
std::optional<Date> parseDay(std::string_view text, int omittedYear);

// The local day of a moment as "1980-03-22", beginning with kNoYear when the date has no year; nothing for a
// moment outside of the years 1 to 9999.
std::optional<std::string> dayText(Date date);

} // namespace addressbook::vcard
