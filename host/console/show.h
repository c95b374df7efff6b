#pragma once

// How values and errors look in a terminal. What is printed is always UTF-8: half of a surrogate pair is
// shown as U+FFFD, U+0000 as its symbol U+2400.

#include "host/values/value.h"

#include <string>

namespace host {

// The value in UTF-8 on one line: a return and a line feed are shown as a paragraph mark. A container is
// shown as its name, its size and its streams: [container: "a.png", 20 x 10, PNGf 312 bytes].
std::string oneLine(const Value& value);

// The value in UTF-8 with line feeds for its returns.
std::string severalLines(const Value& value);

} // namespace host
