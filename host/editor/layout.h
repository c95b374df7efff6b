#pragma once

// Puts pieces on lines.

#include "host/editor/format_style.h"
#include "host/editor/pieces.h"

namespace host {

// Where a text that is laid out begins.
struct LayoutStart {
    std::u16string indent; // of the line that it begins in: lines after it have at least that
    size_t column = 0;     // characters before it in its line
    bool isInStep = false; // in the brackets of a script step, which lines after the first stand inside
};

// The text of the pieces, its first line without indentation, lines ended by line feeds.
std::u16string layOut(std::vector<Piece> pieces, const FormatStyle& style, const LayoutStart& start = {});

} // namespace host
