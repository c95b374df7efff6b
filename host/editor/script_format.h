#pragma once

// Formats scripts: one step a line, indented inside blocks, with the text in brackets formatted as
// calculations.

#include "host/calc/source.h"
#include "host/editor/format_style.h"

namespace host {

// Returns the formatted text of a script, with line feeds as line ends. Steps need not be known. Throws
// CalcError.
std::u16string formatScript(const SourcePtr& script, const FormatStyle& style);

} // namespace host
