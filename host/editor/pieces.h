#pragma once

// A calculation as a list of words and comments with what formatting must know about each: which bracket
// closes which, what a sign is, where the author broke the line.

#include "host/calc/lexer.h"

#include <string>
#include <vector>

namespace host {

enum class PieceKind : uint8_t {
    word,  // whatever stands for a value: a name, a number, a text
    label, // of a script step's option, with its colon
    open,  // ( or [
    close, // ) or ]
    semicolon,
    colon,       // between a table and a field
    binary,      // an operator between two values
    sign,        // - or + before a value
    negation,    // not
    comment,     // between slashes and asterisks
    lineComment, // up to the end of the line
};

struct Piece {
    PieceKind kind = PieceKind::word;
    std::u16string text;  // as it is printed
    int breaks = 0;       // of lines before it, at most 2: one empty line is kept
    size_t partner = 0;   // of brackets: the place of the other one
    bool isTight = false; // brackets of a repetition: no blanks
    int level = 0;        // of a binary operator: how strongly it binds
};

// Reads the pieces from [begin] up to [end] of the text, where brackets must match. In the brackets of a
// script step ([isStep]) options may have labels. Throws CalcError.
std::vector<Piece> readPieces(const SourcePtr& source, size_t begin, size_t end, bool isStep);

} // namespace host
