#include "host/editor/highlight.h"

#include "host/calc/builtins.h"
#include "host/calc/constants.h"
#include "host/calc/lexer.h"
#include "host/calc/registry.h"
#include "host/check/calc_file.h"
#include "host/script/own_steps.h"
#include "host/script/step_parameter.h"

#include <algorithm>
#include <optional>

namespace host {

namespace {

// Marks the parts of one calculation, or of what stands in the brackets of a script step.
class CalculationMarker {
  public:
    CalculationMarker(const std::u16string& text, size_t begin, size_t end, bool isStep,
                      const Vocabulary& known, std::vector<Highlight>& parts)
        : text_(text.substr(0, end)), at_(begin), isStep_(isStep), known_(known), parts_(parts),
          option_(parts.size()) {}

    // Returns where the calculation ends; in a step, behind the bracket.
    size_t run() {
        const auto source = std::make_shared<Source>("", text_);
        while (at_ < text_.size()) {
            Lexer lexer(source, at_);
            try {
                readTokens(lexer);
                return at_;
            } catch (const CalcError& error) {
                markComments(error.offset());
                at_ = std::max(at_, error.offset());
                if (error.code() == CalcCode::unterminatedComment ||
                    error.code() == CalcCode::unterminatedText) {
                    const bool isText = error.code() == CalcCode::unterminatedText;
                    mark(at_, text_.size(), isText ? TextRole::text : TextRole::comment);
                    return text_.size();
                }
                ++at_; // past a character that means nothing
            }
        }
        return at_;
    }

  private:
    void readTokens(Lexer& lexer) {
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            markComments(token.begin);
            at_ = token.end;
            if (isStep_ && !isInside(token)) {
                return;
            }
            const auto role = token.kind == TokenKind::identifier ? roleOfName(token) : roleOf(token);
            if (role) {
                mark(token.begin, token.end, *role);
            }
            isInGet_ = token.kind == TokenKind::leftParen && isGet_;
            isGet_ = token.kind == TokenKind::identifier && foldName(token.text) == u"get";
        }
        markComments(text_.size());
        at_ = text_.size();
    }

    // Follows brackets and options of a step; false for the bracket that closes it. The label of an option has no
    // role: Duration (seconds):
    bool isInside(const Token& token) {
        const TokenKind kind = token.kind;
        depth_ += kind == TokenKind::leftParen || kind == TokenKind::leftBracket ? 1 : 0;
        depth_ -= kind == TokenKind::rightParen || kind == TokenKind::rightBracket ? 1 : 0;
        if (depth_ == 0 && kind == TokenKind::colon) {
            parts_.resize(option_);
        }
        if (depth_ == 0 && (kind == TokenKind::colon || kind == TokenKind::semicolon)) {
            option_ = parts_.size();
        }
        return depth_ >= 0;
    }

    static std::optional<TextRole> roleOf(const Token& token) {
        switch (token.kind) {
        case TokenKind::number:
            return TextRole::number;
        case TokenKind::text:
        case TokenKind::quoted:
            return TextRole::text;
        case TokenKind::variable:
            return TextRole::variable;
        case TokenKind::symbol:
            return isWord(*token.op) ? std::optional(TextRole::keyword) : std::nullopt;
        default:
            return std::nullopt;
        }
    }

    std::optional<TextRole> roleOfName(const Token& token) const {
        const std::u16string key = foldName(token.text);
        if (isInGet_) {
            return findGet(key) != nullptr ? std::optional(TextRole::property) : std::nullopt;
        }
        if (findBuiltin(key) != nullptr || known_.functions.find(key) != nullptr) {
            return TextRole::function;
        }
        const size_t next = text_.find_first_not_of(u" \t", token.end);
        if (next != std::u16string::npos && text_[next] == u'(') {
            return TextRole::unknown;
        }
        return findConstant(key) != nullptr ? std::optional(TextRole::constant) : std::nullopt;
    }

    // Marks the comments between two tokens: from at_ up to [end], where nothing else but white space stands.
    void markComments(size_t end) {
        while ((at_ = std::min(text_.find(u'/', at_), end)) < end) {
            const bool isLine = at_ + 1 < end && text_[at_ + 1] == u'/';
            const size_t close = isLine ? text_.find_first_of(u"\r\n", at_) : text_.find(u"*/", at_ + 2);
            const size_t stop = close >= end ? end : close + (isLine ? 0 : 2);
            mark(at_, stop, TextRole::comment);
            at_ = stop;
        }
    }

    void mark(size_t begin, size_t end, TextRole role) {
        if (begin < end) {
            parts_.push_back({begin, end, role});
        }
    }

    std::u16string text_;
    size_t at_;
    bool isStep_;
    const Vocabulary& known_;
    std::vector<Highlight>& parts_;
    size_t option_;        // of a step: the parts before the option that is read
    int depth_ = 0;        // of a step: brackets that are open in it
    bool isGet_ = false;   // the last token was Get
    bool isInGet_ = false; // the last tokens were Get and "("
};

// Marks the parts of a script, line by line.
void markScript(const std::u16string& text, const Vocabulary& known, std::vector<Highlight>& parts) {
    size_t at = 0;
    while ((at = text.find_first_not_of(u" \t\r\n", at)) != std::u16string::npos) {
        const size_t end = std::min(text.find_first_of(u"\r\n", at), text.size());
        if (text[at] == u'#' || text.compare(at, 2, u"//") == 0) {
            parts.push_back({at, end, TextRole::comment});
            at = end;
            continue;
        }
        const size_t bracket = std::min(text.find(u'[', at), end);
        const std::u16string key = foldName(normalName(text.substr(at, bracket - at)));
        if (findOwnStep(key) != nullptr || known.steps.find(key) != nullptr) {
            parts.push_back({at, text.find_last_not_of(u" \t", bracket - 1) + 1, TextRole::keyword});
        }
        at = bracket == end ? end
                            : CalculationMarker(text, bracket + 1, text.size(), true, known, parts).run();
        at = std::min(text.find_first_of(u"\r\n", at), text.size());
    }
}

// Marks the calculations and comments of a file of calculations; in Markdown those of its blocks. Expected results
// have no role.
void markCalculations(const std::u16string& text, bool isMarkdown, const Vocabulary& known,
                      std::vector<Highlight>& parts) {
    bool isInside = !isMarkdown;
    for (size_t at = 0; at < text.size();) {
        size_t end = std::min(text.find(u'\n', at), text.size());
        const std::u16string_view line = std::u16string_view(text).substr(at, end - at);
        if (isMarkdown && line.starts_with(u"```")) {
            isInside = !isInside && line.starts_with(u"```calc");
        } else if (isInside && line.starts_with(u"#")) {
            parts.push_back({at, end, TextRole::comment});
        } else if (isInside && !isCalcCheck(line)) {
            while (end < text.size() && end > at && text[end - 1] == u'\\') { // goes on
                end = std::min(text.find(u'\n', end + 1), text.size());
            }
            CalculationMarker(text, at, end, false, known, parts).run();
        }
        at = end + 1;
    }
}

} // namespace

std::vector<Highlight> highlights(const Document& document, const Vocabulary& known) {
    std::vector<Highlight> parts;
    const std::u16string& text = document.text();
    switch (document.kind()) {
    case FileKind::script:
        markScript(text, known, parts);
        break;
    case FileKind::calculations:
    case FileKind::markdown:
        markCalculations(text, document.kind() == FileKind::markdown, known, parts);
        break;
    case FileKind::calculation:
    case FileKind::customFunctions:
        CalculationMarker(text, 0, text.size(), false, known, parts).run();
        break;
    }
    return parts;
}

} // namespace host
