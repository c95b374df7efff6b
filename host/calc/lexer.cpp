#include "host/calc/lexer.h"

#include "host/values/formats.h"
#include "host/values/text.h"

#include <algorithm>
#include <cstdio>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace host {

namespace {

constexpr char16_t kReturn = u'\r';
constexpr char16_t kParagraphMark = u'\u00B6';
constexpr char16_t kOpenCurlyQuote = u'\u201C';
constexpr char16_t kCloseCurlyQuote = u'\u201D';

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// White space includes the no-break space, of which text pasted from web pages is full.
bool isBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0' || c == u'\uFEFF';
}

bool equalsIgnoringCase(std::u16string_view word, std::u16string_view lower) {
    return std::equal(word.begin(), word.end(), lower.begin(), lower.end(), [](char16_t a, char16_t b) {
        return a == b || (a >= u'A' && a <= u'Z' && a - u'A' + u'a' == b);
    });
}

// Returns the operator that a word is; null for any other word.
const OperatorRow* wordOperator(std::u16string_view word) {
    const auto* const row = std::find_if(kOperators.begin(), kOperators.end(), [&](const OperatorRow& known) {
        return isWord(known) && equalsIgnoringCase(word, known.spelling);
    });
    return row == kOperators.end() ? nullptr : row;
}

// Whether a comma separates arguments as a semicolon does: where it is no decimal point.
bool isCommaSeparator() {
    return formats().decimalPoint != u',';
}

struct Mark {
    char16_t character;
    TokenKind kind;
};

constexpr Mark kMarks[] = {
    {u'(', TokenKind::leftParen},    {u')', TokenKind::rightParen}, {u'[', TokenKind::leftBracket},
    {u']', TokenKind::rightBracket}, {u';', TokenKind::semicolon},  {u':', TokenKind::colon},
};

} // namespace

bool startsName(char32_t c) {
    constexpr std::u32string_view kSigns = U"_~@#";
    constexpr uint32_t kSymbols = U_GC_SC_MASK | U_GC_SO_MASK; // of currencies, and pictures
    const auto character = static_cast<UChar32>(c);
    return kSigns.find(c) != kSigns.npos || u_isalpha(character) ||
           (U_GET_GC_MASK(character) & kSymbols) != 0;
}

bool continuesName(char32_t c) {
    constexpr std::u32string_view kSigns = U".?!%|'`\u2019\u00A7";
    constexpr uint32_t kParts = U_GC_N_MASK | U_GC_M_MASK; // digits, combining accents
    return startsName(c) || kSigns.find(c) != kSigns.npos ||
           (U_GET_GC_MASK(static_cast<UChar32>(c)) & kParts) != 0;
}

char16_t Lexer::peek(size_t ahead) const {
    const std::u16string_view text = source_->text();
    return at_ + ahead < text.size() ? text[at_ + ahead] : u'\0';
}

char32_t Lexer::codePoint(size_t ahead) const {
    const char16_t lead = peek(ahead);
    const char16_t trail = peek(ahead + 1);
    return U16_IS_LEAD(lead) && U16_IS_TRAIL(trail) ? U16_GET_SUPPLEMENTARY(lead, trail) : lead;
}

void Lexer::fail(CalcCode code, size_t offset, std::string message) const {
    throw CalcError(parseErrorKind(code), code, source_, offset, std::move(message));
}

Token Lexer::next() {
    skipBlanks();
    Token token;
    token.begin = at_;
    if (at_ == source_->text().size()) {
        token.end = at_;
        return token;
    }
    const char16_t c = peek();
    if (c == u'"') {
        readText(token);
    } else if (c == kOpenCurlyQuote) {
        readQuoted(token);
    } else if (isDigit(c) || ((c == u'.' || c == formats().decimalPoint) && isDigit(peek(1)))) {
        readNumber(token);
    } else if (c == u'$' && peek(1) == u'{') {
        readBracedName(token);
    } else if (c == u'$' || startsName(codePoint())) {
        readWord(token);
    } else {
        readSymbol(token);
    }
    token.end = at_;
    return token;
}

void Lexer::skipBlanks() {
    const size_t size = source_->text().size();
    while (at_ < size) {
        if (isBlank(peek())) {
            ++at_;
        } else if (peek() == u'/' && peek(1) == u'/') {
            while (at_ < size && peek() != u'\r' && peek() != u'\n') {
                ++at_;
            }
        } else if (peek() == u'/' && peek(1) == u'*') {
            const size_t close = source_->text().find(u"*/", at_ + 2);
            if (close == std::u16string_view::npos) {
                fail(CalcCode::unterminatedComment, at_, "this comment is not closed; expected \"*/\"");
            }
            at_ = close + 2;
        } else {
            return;
        }
    }
}

// In a text, a backslash escapes a quote, a backslash or a paragraph mark; a paragraph mark without it and
// any line end stand for a carriage return.
void Lexer::readText(Token& token) {
    token.kind = TokenKind::text;
    const size_t size = source_->text().size();
    for (++at_; at_ < size; ++at_) {
        const char16_t c = peek();
        const char16_t after = peek(1);
        if (c == u'"') {
            ++at_;
            return;
        }
        if (c == u'\\' && (after == u'"' || after == u'\\' || after == kParagraphMark)) {
            token.text += after;
            ++at_;
        } else if (c == kParagraphMark || c == u'\n') {
            token.text += kReturn;
        } else if (c == u'\r') {
            token.text += kReturn;
            at_ += after == u'\n' ? 1 : 0;
        } else {
            token.text += c;
        }
    }
    fail(CalcCode::unterminatedText, token.begin, "this text is not closed; expected \"\\\"\"");
}

void Lexer::readQuoted(Token& token) {
    const size_t close = source_->text().find(kCloseCurlyQuote, at_);
    if (close == std::u16string_view::npos) {
        fail(CalcCode::unterminatedText, token.begin, "this name is not closed; expected \"\u201D\"");
    }
    token.kind = TokenKind::quoted;
    token.text = source_->text().substr(at_ + 1, close - at_ - 1);
    at_ = close + 1;
}

void Lexer::readNumber(Token& token) {
    token.kind = TokenKind::number;
    while (isDigit(peek())) {
        ++at_;
    }
    // The decimal point of the formats in use is accepted as well.
    const bool hasOwnPoint = peek() == formats().decimalPoint && isDigit(peek(1));
    if (peek() == u'.' || hasOwnPoint) {
        ++at_;
        while (isDigit(peek())) {
            ++at_;
        }
    }
    if (peek() == u'e' || peek() == u'E') {
        const size_t sign = peek(1) == u'+' || peek(1) == u'-' ? 1 : 0;
        if (isDigit(peek(1 + sign))) {
            at_ += 1 + sign;
            while (isDigit(peek())) {
                ++at_;
            }
        }
    }
    token.text = source_->text().substr(token.begin, at_ - token.begin);
    std::replace(token.text.begin(), token.text.end(), formats().decimalPoint, u'.');
}

// Reads a name that stands in braces, as it holds what others may not: ${net/gross}.
void Lexer::readBracedName(Token& token) {
    const std::u16string_view text = source_->text();
    const size_t close = text.find_first_of(u"}\r\n", at_);
    if (close == std::u16string_view::npos || text[close] != u'}' || close == at_ + 2) {
        fail(CalcCode::nameMissing, at_, "expected a name between \"${\" and \"}\"");
    }
    token.kind = TokenKind::identifier;
    token.text = text.substr(at_ + 2, close - at_ - 2);
    at_ = close + 1;
}

// Returns the number of units of the word that begins [ahead] units from here.
size_t Lexer::wordLength(size_t ahead) const {
    size_t end = ahead;
    for (char32_t c = codePoint(end); c != 0 && continuesName(c); c = codePoint(end)) {
        end += U16_LENGTH(c);
    }
    return end - ahead;
}

void Lexer::readWord(Token& token) {
    const std::u16string_view text = source_->text();
    token.kind = peek() == u'$' ? TokenKind::variable : TokenKind::identifier;
    while (peek() == u'$' && at_ - token.begin < 2) {
        ++at_;
    }
    const size_t length = wordLength(0);
    if (length == 0) {
        fail(CalcCode::nameMissing, at_, "expected the name of a variable after \"$\"");
    }
    at_ += length;
    token.op = wordOperator(text.substr(token.begin, at_ - token.begin));
    if (token.op != nullptr) {
        token.kind = TokenKind::symbol;
    } else {
        readMoreWords();
    }
    token.text = text.substr(token.begin, at_ - token.begin);
}

// Reads the other words of a name, which blanks within a line part: all up to an operator or the label of a step's
// option, which is a word before a colon.
void Lexer::readMoreWords() {
    const std::u16string_view text = source_->text();
    const auto blanks = [&](size_t from) {
        return std::min(text.find_first_not_of(u' ', from), text.size()) - from;
    };
    for (;;) {
        const size_t start = blanks(at_);
        if (start == 0 || !(isDigit(peek(start)) || startsName(codePoint(start)))) {
            return;
        }
        const size_t end = start + wordLength(start);
        const size_t next = end + blanks(at_ + end);
        const bool isLabel = peek(next) == u':' && peek(next + 1) != u':';
        if (isLabel || wordOperator(text.substr(at_ + start, end - start)) != nullptr) {
            return;
        }
        at_ += end;
    }
}

void Lexer::readSymbol(Token& token) {
    const std::u16string_view rest = source_->text().substr(at_);
    if (rest[0] == kParagraphMark) {
        token.kind = TokenKind::text;
        token.text = kReturn;
        ++at_;
        return;
    }
    if (rest[0] == u',' && isCommaSeparator()) {
        token.kind = TokenKind::semicolon;
        ++at_;
        return;
    }
    for (const Mark& mark : kMarks) {
        if (rest[0] == mark.character) {
            token.kind = mark.kind;
            ++at_;
            return;
        }
    }
    for (const OperatorRow& row : kOperators) {
        if (!isWord(row) && rest.starts_with(row.spelling)) {
            token.kind = TokenKind::symbol;
            token.op = &row;
            at_ += row.spelling.size();
            return;
        }
    }
    const char32_t c = codePoint();
    if (c > U' ' && c != 0x7F && !U16_IS_SURROGATE(c)) {
        fail(CalcCode::operatorOrFunctionExpected, at_,
             "a calculation has no use for the character \"" + toUtf8(rest.substr(0, U16_LENGTH(c))) + "\"");
    }
    char number[16];
    std::snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(c));
    fail(CalcCode::operatorOrFunctionExpected, at_,
         std::string("a calculation has no use for the character ") + number);
}

} // namespace host
