#pragma once

// Cuts a calculation into tokens, one at a time.

#include "host/calc/calc_error.h"
#include "host/calc/operators.h"

#include <string>

namespace host {

enum class TokenKind : uint8_t {
    end,
    number,     // text: its characters
    text,       // text: what it stands for, escapes resolved; also the paragraph mark
    quoted,     // text in curly quotes, as script steps name scripts; no value of a calculation
    identifier, // text: the word as written
    variable,   // text: the name with its one or two dollar signs, as written
    symbol,     // op: the operator
    leftParen,
    rightParen,
    leftBracket,
    rightBracket,
    semicolon,
    colon,
};

struct Token {
    TokenKind kind = TokenKind::end;
    const OperatorRow* op = nullptr; // of a symbol
    size_t begin = 0;                // offsets into the source, half open
    size_t end = 0;
    std::u16string text;
};

// True for a character that a name may start with, or go on with.
bool startsName(char32_t c);
bool continuesName(char32_t c);

class Lexer {
  public:
    // Starts at [offset] of [source], so that a calculation inside a script has its place in the script's
    // file.
    Lexer(SourcePtr source, size_t offset) : source_(std::move(source)), at_(offset) {}

    // The next token; after the last one, `end` for ever. White space and comments are skipped.
    // Throws CalcError: incomplete for an open text or comment, syntax for a character that fits nowhere.
    Token next();

    const SourcePtr& source() const { return source_; }

  private:
    void skipBlanks();
    void readText(Token& token);
    void readQuoted(Token& token);
    void readNumber(Token& token);
    void readWord(Token& token);
    void readSymbol(Token& token);
    char16_t peek(size_t ahead = 0) const;
    char32_t codePoint() const;
    [[noreturn]] void fail(CalcCode code, size_t offset, std::string message) const;

    SourcePtr source_;
    size_t at_;
};

} // namespace host
