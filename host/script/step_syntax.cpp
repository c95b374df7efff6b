#include "host/script/step_syntax.h"

namespace host {

void readLabel(Parser& in, std::initializer_list<std::u16string_view> words, std::string_view what) {
    for (const std::u16string_view word : words) {
        if (!in.acceptWord(word)) {
            in.failExpected(what, CalcCode::nameMissing);
        }
    }
    if (!in.accept(TokenKind::colon)) {
        in.failExpected(what, CalcCode::nameMissing);
    }
}

std::u16string readVariable(Parser& in) {
    if (in.current().kind != TokenKind::variable) {
        in.failExpected("a $local or $$global variable", CalcCode::nameMissing);
    }
    std::u16string name = foldName(in.current().text);
    in.advance();
    if (in.accept(TokenKind::leftBracket)) {
        if (in.current().kind != TokenKind::number || in.current().text != u"1") {
            in.failExpected("repetition 1, the only one a variable has here", CalcCode::valueExpected);
        }
        in.advance();
        in.expect(TokenKind::rightBracket, "\"]\" after the repetition");
    }
    return name;
}

bool isSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\u00A0' || c == u'\uFEFF';
}

std::u16string normalName(std::u16string_view text) {
    std::u16string result;
    for (const char16_t c : text) {
        if (!isSpace(c)) {
            result += c;
        } else if (!result.empty() && result.back() != u' ') {
            result += u' ';
        }
    }
    if (!result.empty() && result.back() == u' ') {
        result.pop_back();
    }
    return result;
}

} // namespace host
