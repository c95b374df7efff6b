#pragma once

// What locales mean for values: how they write dates, and by which of ICU's they order texts. Locales are
// numbers, those of the plug-in interface.

#include "host/values/value.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// ICU's name of a language's locale; null for a locale of no language.
const char* icuLocaleOf(int32_t locale);

// How a locale writes a day in numbers. The system's locale, those of no language, and a number
// that no locale has write as the formats in use do.
DateOrder dateOrderIn(int32_t locale);

// The date, or date and time, that a text spells in a locale, in whatever decimal digits; nothing when it
// spells none.
std::optional<DateTime> timestampIn(int32_t locale, std::u16string_view text);

// A text as it is to be read in a locale when a value of a type is wanted: dates and time stamps are read,
// all else stays text. Invalid for a text with digits that is no date of the locale.
Value valueIn(int32_t locale, std::u16string_view text, ValueType wanted);

} // namespace host
