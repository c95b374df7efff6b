#include "host/editor/script_format.h"

#include "host/calc/characters.h"
#include "host/calc/lexer.h"
#include "host/calc/registry.h"
#include "host/editor/layout.h"
#include "host/script/step_parameter.h"

namespace host {

namespace {

// How a step changes the indentation of itself and of the steps after it.
struct Indentation {
    std::u16string_view name; // folded
    int before;
    int after;
};

constexpr Indentation kIndentations[] = {
    {u"if", 0, 1},
    {u"else if", -1, 1},
    {u"else", -1, 1},
    {u"end if", -1, 0},
    {u"loop", 0, 1},
    {u"end loop", -1, 0},
    {u"open transaction", 0, 1},
    {u"commit transaction", -1, 0},
};

bool isLineEnd(char16_t c) {
    return c == u'\r' || c == u'\n';
}

class ScriptFormatter {
  public:
    ScriptFormatter(const SourcePtr& script, const FormatStyle& style)
        : source_(script), text_(script->text()), style_(style) {}

    std::u16string format() {
        while (at_ < text_.size()) {
            readLine();
        }
        return std::move(result_);
    }

  private:
    // Reads a step, which may have several lines, or a comment, or an empty line, which is a step of its own.
    void readLine() {
        skipBlanks();
        if (at_ == text_.size()) {
            return;
        }
        if (text_[at_] == u'#' || text_.substr(at_).starts_with(u"//")) {
            result_ += indent() + lineUpTo(endOfLine());
        } else if (!isLineEnd(text_[at_])) {
            step();
        }
        result_ += u'\n';
        if (at_ < text_.size()) {
            at_ += text_.substr(at_).starts_with(u"\r\n") ? 2 : 1;
        }
    }

    void skipBlanks() {
        while (at_ < text_.size() && isSpace(text_[at_])) {
            ++at_;
        }
    }

    size_t endOfLine() const {
        const size_t end = text_.find_first_of(u"\r\n", at_);
        return end == std::u16string_view::npos ? text_.size() : end;
    }

    // Returns the text up to [end], without blanks at its end, and moves past it.
    std::u16string lineUpTo(size_t end) {
        std::u16string line(text_.substr(at_, end - at_));
        while (!line.empty() && isSpace(line.back())) {
            line.pop_back();
        }
        at_ = end;
        return line;
    }

    std::u16string indent() const {
        std::u16string result;
        for (int i = 0; i < level_; ++i) {
            result += style_.indent;
        }
        return result;
    }

    void step() {
        const size_t end = endOfLine();
        const size_t bracket = text_.substr(0, end).find(u'[', at_);
        const std::u16string name = normalName(lineUpTo(std::min(bracket, end)));
        int after = 0;
        for (const Indentation& row : kIndentations) {
            if (foldName(name) == row.name) {
                level_ = std::max(level_ + row.before, 0);
                after = row.after;
            }
        }
        result_ += indent() + name;
        if (bracket < end) {
            brackets(name);
        }
        level_ += after;
        skipBlanks();
        const std::u16string rest = lineUpTo(endOfLine()); // not valid here, but kept for the user to see
        result_ += rest.empty() ? u"" : u" " + rest;
    }

    void brackets(const std::u16string& name) {
        const size_t close = closingBracket();
        LayoutStart start{indent(), 0, true};
        start.column = Characters(start.indent).count() + Characters(name).count() + 3;
        const std::vector<Piece> pieces = readPieces(source_, at_ + 1, close, true);
        const bool endsInComment = !pieces.empty() && pieces.back().kind == PieceKind::lineComment;
        const std::u16string inside = layOut(pieces, style_, start);
        result_ += (name.empty() ? u"[" : u" [") + (inside.empty() ? u"" : u" " + inside);
        result_ += endsInComment ? u"\n" + start.indent + u"]" : u" ]";
        at_ = close + 1;
    }

    // Returns the offset of the bracket that closes the one at at_.
    size_t closingBracket() const {
        Lexer lexer(source_, at_ + 1);
        int depth = 1;
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            depth += token.kind == TokenKind::leftBracket    ? 1
                     : token.kind == TokenKind::rightBracket ? -1
                                                             : 0;
            if (depth == 0) {
                return token.begin;
            }
        }
        throw CalcError(ErrorKind::incomplete, CalcCode::unbalancedParenthesis, source_, at_,
                        "this \"[\" is not closed");
    }

    SourcePtr source_;
    std::u16string_view text_;
    const FormatStyle& style_;
    size_t at_ = 0;
    int level_ = 0; // of blocks around the step
    std::u16string result_;
};

} // namespace

std::u16string formatScript(const SourcePtr& script, const FormatStyle& style) {
    return ScriptFormatter(script, style).format();
}

} // namespace host
