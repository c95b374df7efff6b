#pragma once

// Lays scripts out: a step a line, indented inside blocks, what stands in its brackets as calculations are.

#include "host/calc/source.h"
#include "host/editor/format_style.h"

namespace host {

// The formatted text of a script, lines ended by line feeds. Steps need not be known. Throws CalcError.
std::u16string formatScript(const SourcePtr& script, const FormatStyle& style);

} // namespace host
