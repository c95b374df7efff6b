#pragma once

// Formats calculations and scripts in FileMaker's style: blanks inside parentheses and around operators and
// semicolons, and one level of indentation for each open bracket. Line breaks and comments stay where the
// author put them; lines that are too long are broken.
//
// Formatting changes nothing but white space and the letter case of functions, Get names and operators, so
// that the meaning stays; formatting twice is the same as once. Names need not be known.

#include "host/calc/source.h"
#include "host/check/checker.h"
#include "host/editor/format_style.h"

#include <string>

namespace host {

// Returns the formatted text of a whole file, with its own line ends. In files of calculations, and in
// Markdown, calculations that cannot be parsed stay as they are, and no lines are broken. Throws CalcError
// for a text or comment without its end, an unexpected character, and brackets that do not match.
std::u16string formatFile(const SourcePtr& file, FileKind kind, const FormatStyle& style);

} // namespace host
