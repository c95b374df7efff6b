#pragma once

// A calculation as a list of words, symbols and comments, with what formatting has to know of each: the
// matching bracket, whether - is a sign, where the author broke the line.

#include "host/calc/lexer.h"

#include <string>
#include <vector>

namespace host {

enum class PieceKind : uint8_t {
    word,  // a value: a name, a number, a text
    label, // of a script step's option, with its colon
    open,  // ( or [
    close, // ) or ]
    semicolon,
    colon,       // between a table and a field
    binary,      // an operator between two values
    sign,        // - or + before a value
    negation,    // not
    comment,     // between slashes and asterisks
    lineComment, // from two slashes to the end of the line
};

struct Piece {
    PieceKind kind = PieceKind::word;
    std::u16string text;  // as it is printed
    int breaks = 0;       // the line breaks before it, at most 2, which keeps one empty line
    size_t partner = 0;   // bracket: the index of the matching one
    bool isTight = false; // bracket of a repetition, which has no blanks
    int level = 0;        // binary operator: its precedence (host/calc/operators.h)
};

// Returns the pieces of the text from [begin] up to [end]. In the brackets of a script step ([isStep])
// options may have labels. Throws CalcError, also when brackets do not match.
std::vector<Piece> readPieces(const SourcePtr& source, size_t begin, size_t end, bool isStep);

} // namespace host
