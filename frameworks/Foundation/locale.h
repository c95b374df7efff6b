#pragma once

// The user's locale, as given by the environment.

#include <string>
#include <string_view>

namespace foundation {

// Returns the locale's name for a category ("LC_TIME"), "de_DE" of "de_DE.UTF-8@euro"; empty when the
// environment has none.
std::string localeName(const char* category);

// Returns the user's country as an ISO code in lower case; "us" when the locale has none.
std::string localeCountry();

// Whether the family name comes first in the names of the user's country.
bool localeNamesLastFirst();

// Whether the day comes before the month in a locale's numeric dates.
bool writesDayFirst(std::string_view locale);

} // namespace foundation
