#pragma once

// Arranges pieces in lines.

#include "host/editor/format_style.h"
#include "host/editor/pieces.h"

namespace host {

// The place where a text begins.
struct LayoutStart {
    std::u16string indent; // the indentation of the first line, which all further lines have at least
    size_t column = 0;     // the number of characters before the text in its line
    bool isInStep = false; // in the brackets of a script step: further lines are indented by one level
};

// Returns the text of the pieces, with line feeds between lines; the first line is not indented.
std::u16string layOut(std::vector<Piece> pieces, const FormatStyle& style, const LayoutStart& start = {});

} // namespace host
