#pragma once

// The numbers of fonts: this host draws nothing, so that a font is a name, and its number the place where the
// name was first heard.

#include "FMWrapper/FMXTextStyle.h"

#include <optional>
#include <string>

namespace host {

struct Font {
    std::u16string name;
    fmx::FontScript script;
};

// The number of a font, the same each time; a name that is new gets a new one. kInvalidFont for an empty name
// and when there are no numbers left.
fmx::FontID fontNumber(const std::u16string& name, fmx::FontScript script);

// The font of a number; nothing when there is none.
std::optional<Font> fontOf(fmx::FontID number);

} // namespace host
