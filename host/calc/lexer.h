#pragma once

// Splits a calculation into tokens, one at a time.

#include "host/calc/calc_error.h"
#include "host/calc/operators.h"

#include <string>

namespace host {

enum class TokenKind : uint8_t {
    end,
    number,     // text: its characters
    text,       // text: its contents, escapes resolved; also for a paragraph mark
    quoted,     // text in curly quotes, by which script steps name scripts; not valid in a calculation
    identifier, // text: the name as written, without the braces that it may stand in
    variable,   // text: the name with its one or two dollar signs, as written
    symbol,     // op: the operator
    leftParen,
    rightParen,
    leftBracket,
    rightBracket,
    semicolon, // also a comma, where that is not the decimal point
    colon,
};

struct Token {
    TokenKind kind = TokenKind::end;
    const OperatorRow* op = nullptr; // set for a symbol
    size_t begin = 0;                // offsets into the source, half open
    size_t end = 0;
    std::u16string text;
};

// Whether a word of a name may start with a character, and whether it may continue with it. A name may be of several
// words with blanks between them, of which all but the first may also start with a digit: "total of 2010".
bool startsName(char32_t c);
bool continuesName(char32_t c);

class Lexer {
  public:
    // Starts at [offset] in [source], so that the places in a calculation inside a script are those in the
    // script's file.
    Lexer(SourcePtr source, size_t offset) : source_(std::move(source)), at_(offset) {}

    // Returns the next token; after the last one, always `end`. Skips white space and comments. Throws
    // CalcError: incomplete for a text or comment without its end, syntax for an unexpected character.
    Token next();

    const SourcePtr& source() const { return source_; }

  private:
    void skipBlanks();
    void readText(Token& token);
    void readQuoted(Token& token);
    void readNumber(Token& token);
    void readBracedName(Token& token);
    void readWord(Token& token);
    void readMoreWords();
    void readSymbol(Token& token);
    char16_t peek(size_t ahead = 0) const;
    char32_t codePoint(size_t ahead = 0) const;
    size_t wordLength(size_t ahead) const;
    [[noreturn]] void fail(CalcCode code, size_t offset, std::string message) const;

    SourcePtr source_;
    size_t at_;
};

} // namespace host
