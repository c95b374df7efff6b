#pragma once

// What locales mean for values: how dates are written, and by which of ICU's locales texts are ordered.
// Locales are given as numbers, those of the plug-in interface.

#include "host/values/value.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// Returns ICU's name for a language's locale; null for a locale without a language.
const char* icuLocaleOf(int32_t locale);

// Returns the order of the numbers in a locale's dates. For the system's locale, those without a language,
// and unknown numbers returns that of the formats in use.
DateOrder dateOrderIn(int32_t locale);

// Returns the date, or date and time, that a text gives in a locale, in decimal digits of any script; nothing
// when it gives none.
std::optional<DateTime> timestampIn(int32_t locale, std::u16string_view text);

// Returns the value for a text that was given in a locale where a value of type [wanted] is needed. For dates
// and time stamps: the time stamp that the text gives, or an invalid value when it has digits but gives no
// date in the locale. In all other cases the text itself.
Value valueIn(int32_t locale, std::u16string_view text, ValueType wanted);

} // namespace host
