#pragma once

#include <string>

namespace addressbook {

// The user's country as a lower-case ISO code, "us" when the locale names none.
std::string localeCountry();

// Whether names are written family name first where the user lives.
bool localeNamesLastFirst();

} // namespace addressbook
