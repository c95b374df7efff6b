#pragma once

// Lays calculations and scripts out in FileMaker's style: blanks inside parentheses, around operators and
// semicolons; four more for each open bracket. Line breaks and comments stay where the author put them; a
// line that is too long is broken.
//
// Words are moved, never changed, but for the letter case of functions, Get names and operators: what a text
// means stays, and formatting twice changes nothing. Names need not be known.

#include "host/calc/source.h"
#include "host/check/checker.h"
#include "host/editor/format_style.h"

#include <string>

namespace host {

// The formatted text of a whole file, with the line ends that it has. In files of calculations, and in
// Markdown, only those that can be read are formatted, and none is broken into more lines. Throws CalcError
// for an open text or comment, a character that fits nowhere, brackets that do not match.
std::u16string formatFile(const SourcePtr& file, FileKind kind, const FormatStyle& style);

} // namespace host
