#include "host/editor/pieces.h"

#include "host/calc/builtins.h"
#include "host/calc/registry.h"

#include <algorithm>

namespace host {

namespace {

bool isLineEnd(char16_t c) {
    return c == u'\r' || c == u'\n';
}

// Whether an operator after a piece is a binary one.
bool endsValue(const Piece& piece) {
    return piece.kind == PieceKind::word || piece.kind == PieceKind::close;
}

// Whether an operator may be a sign. Two others without a blank between them might be another operator, or a comment.
bool isSign(const OperatorRow& op) {
    return op.meaning == Operator::add || op.meaning == Operator::subtract;
}

class PieceReader {
  public:
    PieceReader(const SourcePtr& source, size_t begin, size_t end, bool isStep)
        : source_(source), offset_(begin), text_(source->text().substr(begin, end - begin)), isStep_(isStep) {
    }

    std::vector<Piece> read() {
        Lexer lexer(std::make_shared<Source>("", std::u16string(text_)), 0);
        try {
            for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
                readBlanks(token.begin);
                add(token);
                at_ = token.end;
            }
        } catch (const CalcError& error) { // rethrown with its place in the whole source
            throw CalcError(error.kind(), error.code(), source_, offset_ + error.offset(), error.what());
        }
        readBlanks(text_.size());
        if (!open_.empty()) {
            const Piece& piece = pieces_[open_.back()];
            fail(offsets_[open_.back()], CalcCode::unbalancedParenthesis,
                 std::string("this \"") + static_cast<char>(piece.text[0]) + "\" is not closed");
        }
        return std::move(pieces_);
    }

  private:
    // Reads white space and comments from at_ up to [end].
    void readBlanks(size_t end) {
        while (at_ < end) {
            if (text_[at_] != u'/') {
                const bool isPair = text_[at_] == u'\r' && at_ + 1 < end && text_[at_ + 1] == u'\n';
                breaks_ += isLineEnd(text_[at_]) ? 1 : 0;
                at_ += isPair ? 2 : 1;
                continue;
            }
            const bool isLine = text_[at_ + 1] == u'/';
            size_t stop = isLine ? at_ : text_.find(u"*/", at_ + 2) + 2;
            while (isLine && stop < end && !isLineEnd(text_[stop])) {
                ++stop;
            }
            Piece piece{isLine ? PieceKind::lineComment : PieceKind::comment,
                        std::u16string(text_.substr(at_, stop - at_))};
            while (isLine && (piece.text.back() == u' ' || piece.text.back() == u'\t')) {
                piece.text.pop_back();
            }
            push(std::move(piece), at_);
            at_ = stop;
        }
    }

    void push(Piece piece, size_t offset) {
        const bool needsBreak = !pieces_.empty() && pieces_.back().kind == PieceKind::lineComment;
        piece.breaks = pieces_.empty() ? 0 : std::clamp(breaks_, needsBreak ? 1 : 0, 2);
        breaks_ = 0;
        pieces_.push_back(std::move(piece));
        offsets_.push_back(offset);
    }

    // Returns the last piece that is no comment; null at the start.
    const Piece* lastWord() const {
        for (size_t i = pieces_.size(); i > 0; --i) {
            if (pieces_[i - 1].kind != PieceKind::comment && pieces_[i - 1].kind != PieceKind::lineComment) {
                return &pieces_[i - 1];
            }
        }
        return nullptr;
    }

    void add(const Token& token) {
        Piece piece{PieceKind::word, std::u16string(text_.substr(token.begin, token.end - token.begin))};
        const Piece* const last = lastWord();
        switch (token.kind) {
        case TokenKind::leftParen:
        case TokenKind::leftBracket:
            return open(std::move(piece), token, last);
        case TokenKind::rightParen:
        case TokenKind::rightBracket:
            return close(std::move(piece), token);
        case TokenKind::semicolon:
            piece = {PieceKind::semicolon, u";"};
            break;
        case TokenKind::colon:
            if (endsLabel(token)) {
                return addLabel(token);
            }
            piece.kind = PieceKind::colon;
            break;
        case TokenKind::symbol:
            addOperator(piece, *token.op, last);
            break;
        case TokenKind::identifier:
            piece.text = spelling(piece.text, token, last);
            break;
        default:
            break;
        }
        if (!joinsEncoding(piece, token.begin)) {
            push(std::move(piece), token.begin);
        }
    }

    // Adds the number of an encoding that is a step's option to the pieces before it: "Read as: UTF-8" subtracts
    // nothing. Returns false when it is none.
    bool joinsEncoding(const Piece& number, size_t offset) {
        const size_t count = pieces_.size();
        if (!isStep_ || !open_.empty() || count < 3 || pieces_[count - 3].kind != PieceKind::label ||
            foldName(pieces_[count - 2].text) != u"utf" || pieces_[count - 1].text != u"-" ||
            offsets_[count - 1] != offsets_[count - 2] + 3 || offset != offsets_[count - 1] + 1) {
            return false;
        }
        pieces_.pop_back();
        offsets_.pop_back();
        pieces_.back().text += u'-' + number.text;
        return true;
    }

    void open(Piece piece, const Token& token, const Piece* last) {
        piece.kind = PieceKind::open;
        piece.isTight =
            token.kind == TokenKind::leftBracket && last != nullptr && last->kind == PieceKind::word;
        open_.push_back(pieces_.size());
        push(std::move(piece), token.begin);
    }

    void close(Piece piece, const Token& token) {
        const char16_t wanted = token.kind == TokenKind::rightParen ? u'(' : u'[';
        if (open_.empty() || pieces_[open_.back()].text[0] != wanted) {
            fail(token.begin, CalcCode::unbalancedParenthesis,
                 std::string("this \"") + static_cast<char>(piece.text[0]) + "\" closes nothing");
        }
        Piece& opener = pieces_[open_.back()];
        opener.partner = pieces_.size();
        piece.kind = PieceKind::close;
        piece.partner = open_.back();
        piece.isTight = opener.isTight;
        open_.pop_back();
        push(std::move(piece), token.begin);
    }

    static void addOperator(Piece& piece, const OperatorRow& op, const Piece* last) {
        const bool isBinary = (last != nullptr && endsValue(*last)) || !isSign(op);
        piece.kind = op.meaning == Operator::logicalNot ? PieceKind::negation
                     : isBinary                         ? PieceKind::binary
                                                        : PieceKind::sign;
        piece.level = op.level;
        if (isWord(op)) {
            piece.text = op.spelling;
        }
    }

    // Whether a colon is that of an option's label: a single one, and the first of the option.
    bool endsLabel(const Token& colon) const {
        if (!isStep_ || !open_.empty() || text_.substr(colon.end).starts_with(u':') ||
            text_.substr(0, colon.begin).ends_with(u':')) {
            return false;
        }
        const auto isEnd = [](const Piece& piece) {
            return piece.kind == PieceKind::semicolon || piece.kind == PieceKind::label;
        };
        const auto last = std::find_if(pieces_.rbegin(), pieces_.rend(), isEnd);
        return last == pieces_.rend() || last->kind == PieceKind::semicolon;
    }

    // Joins the pieces of a label and its colon to one piece: "Duration (seconds):".
    void addLabel(const Token& colon) {
        size_t first = pieces_.size();
        while (first > 0 && pieces_[first - 1].kind != PieceKind::semicolon) {
            --first;
        }
        Piece label{PieceKind::label, u""};
        if (first < pieces_.size()) {
            label.breaks = pieces_[first].breaks;
            label.text = text_.substr(offsets_[first], colon.begin - offsets_[first]);
            while (!label.text.empty() && (label.text.back() == u' ' || label.text.back() == u'\t')) {
                label.text.pop_back();
            }
            pieces_.resize(first);
            offsets_.resize(first);
        }
        label.text += u':';
        const int breaks = label.breaks;
        push(std::move(label), colon.begin);
        pieces_.back().breaks = std::max(breaks, pieces_.back().breaks);
    }

    // Returns the spelling of a name: functions and Get names have the letter case of their definition. A
    // name before "(" is a function, even if Let defines the same name.
    std::u16string spelling(const std::u16string& name, const Token& token, const Piece* last) const {
        size_t next = token.end;
        while (next < text_.size() && (text_[next] == u' ' || text_[next] == u'\t')) {
            ++next;
        }
        const std::u16string key = foldName(name);
        if (next < text_.size() && text_[next] == u'(') {
            const Builtin* builtin = findBuiltin(key);
            return builtin != nullptr ? std::u16string(builtin->name()) : name;
        }
        const size_t count = pieces_.size();
        const bool isOfGet = count > 1 && last == &pieces_[count - 1] && last->kind == PieceKind::open &&
                             pieces_[count - 2].text == u"Get";
        const GetRow* get = isOfGet ? findGet(key) : nullptr;
        return get != nullptr ? std::u16string(get->name) : name;
    }

    [[noreturn]] void fail(size_t offset, CalcCode code, std::string message) const {
        throw CalcError(ErrorKind::syntax, code, source_, offset_ + offset, std::move(message));
    }

    SourcePtr source_;
    size_t offset_; // of the text in the source
    std::u16string_view text_;
    bool isStep_;
    size_t at_ = 0;
    int breaks_ = 0; // line breaks since the last piece
    std::vector<Piece> pieces_;
    std::vector<size_t> offsets_; // by piece: its offset in the text
    std::vector<size_t> open_;    // brackets that are not closed yet
};

} // namespace

std::vector<Piece> readPieces(const SourcePtr& source, size_t begin, size_t end, bool isStep) {
    return PieceReader(source, begin, end, isStep).read();
}

} // namespace host
