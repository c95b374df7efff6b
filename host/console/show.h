#pragma once

// Values as text for a terminal. The text is always valid UTF-8: half of a surrogate pair is shown as U+FFFD,
// U+0000 as its symbol U+2400.

#include "host/values/value.h"

#include <string>

namespace host {

// Returns the value on one line: carriage returns and line feeds are shown as paragraph marks. A container is
// shown by its kind, name and size: [picture PNG, "a.png", 20 x 10, 3,412 bytes]; by its streams when it has others:
// [container, "a.png", GIFf 78 bytes, BMPf 78 bytes].
std::string oneLine(const Value& value);

// Returns the value with line feeds for its carriage returns.
std::string severalLines(const Value& value);

} // namespace host
