#pragma once

// The numbers of fonts. As this host draws nothing, a font is only a name; names are numbered in the order in
// which they are first used.

#include "FMWrapper/FMXTextStyle.h"

#include <optional>
#include <string>

namespace host {

struct Font {
    std::u16string name;
    fmx::FontScript script;
};

// Returns the number of a font, which is the same each time; a new name gets a new number. kInvalidFont for
// an empty name, and when no numbers are left.
fmx::FontID fontNumber(const std::u16string& name, fmx::FontScript script);

// Returns the font with a number; nothing when there is none.
std::optional<Font> fontOf(fmx::FontID number);

} // namespace host
