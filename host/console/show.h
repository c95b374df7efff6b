#pragma once

// Values as text for a terminal. The text is always valid UTF-8: half of a surrogate pair is shown as U+FFFD,
// U+0000 as its symbol U+2400.

#include "host/values/value.h"

#include <string>

namespace host {

// Returns the value on one line: carriage returns and line feeds are shown as paragraph marks. A container is
// shown by its name, size and streams: [container: "a.png", 20 x 10, PNGf 312 bytes].
std::string oneLine(const Value& value);

// Returns the value with line feeds for its carriage returns.
std::string severalLines(const Value& value);

} // namespace host
