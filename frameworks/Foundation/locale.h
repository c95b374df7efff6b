#pragma once

// The user's locale as the environment names it.

#include <string>
#include <string_view>

namespace foundation {

// The locale's name for a category ("LC_TIME"), "de_DE" of "de_DE.UTF-8@euro"; empty when the environment has
// none.
std::string localeName(const char* category);

// The user's country as a lower-case ISO code, "us" when the locale names none.
std::string localeCountry();

// Whether names are written family name first where the user lives.
bool localeNamesLastFirst();

// Whether people of a locale write the day before the month in dates of digits.
bool writesDayFirst(std::string_view locale);

} // namespace foundation
