// Works line by line: breaks a line that is too long at its outermost places, then looks at the parts again.
#include "host/editor/layout.h"

#include "host/calc/characters.h"

#include <algorithm>

namespace host {

namespace {

bool isComment(const Piece& piece) {
    return piece.kind == PieceKind::comment || piece.kind == PieceKind::lineComment;
}

// Whether there is a blank between two pieces in a line.
bool needsBlank(const Piece& left, const Piece& right) {
    if (isComment(left) || isComment(right)) {
        return true;
    }
    if (left.kind == PieceKind::label) {
        return true; // also before a colon: two that touch would be those of a field
    }
    const bool isTight = (left.kind == PieceKind::open && left.isTight) ||
                         ((right.kind == PieceKind::open || right.kind == PieceKind::close) && right.isTight);
    return !isTight && left.kind != PieceKind::sign && left.kind != PieceKind::colon &&
           right.kind != PieceKind::colon;
}

class Layout {
  public:
    Layout(std::vector<Piece> pieces, const FormatStyle& style, const LayoutStart& start)
        : pieces_(std::move(pieces)), style_(style), start_(start), level_(pieces_.size(), 0) {
        std::vector<size_t> open;
        std::vector<int> semicolons = {0};
        for (size_t i = 0; i < pieces_.size(); ++i) {
            if (pieces_[i].kind == PieceKind::close) {
                open.pop_back();
                semicolons.pop_back();
            }
            depth_.push_back(static_cast<int>(open.size()));
            opener_.push_back(open.empty() ? kNone : open.back());
            semicolons.back() += pieces_[i].kind == PieceKind::semicolon ? 1 : 0;
            ordinal_.push_back(semicolons.back());
            if (pieces_[i].kind == PieceKind::open) {
                open.push_back(i);
                semicolons.push_back(0);
            }
        }
    }

    std::u16string text() {
        std::u16string result;
        for (size_t begin = 0; begin < pieces_.size();) {
            const int level = levelOf(begin);
            size_t end = endOfLine(begin);
            while (isTooLong(begin, end, level) && breakLine(begin, end)) {
                end = endOfLine(begin);
            }
            if (begin > 0) {
                result += std::u16string(static_cast<size_t>(pieces_[begin].breaks), u'\n') + indent(level);
            }
            result += lineText(begin, end);
            for (size_t i = begin; i < end; ++i) {
                level_[i] = level;
            }
            begin = end;
        }
        return result;
    }

  private:
    static constexpr size_t kNone = SIZE_MAX;

    size_t endOfLine(size_t begin) const {
        size_t end = begin + 1;
        while (end < pieces_.size() && pieces_[end].breaks == 0) {
            ++end;
        }
        return end;
    }

    std::u16string indent(int level) const {
        std::u16string result = start_.indent;
        for (int i = 0; i < level; ++i) {
            result += style_.indent;
        }
        return result;
    }

    // Returns the level of a line: one more than that of the line with the innermost open bracket, and one
    // more when it continues an expression of an earlier line. The brackets of a script step count as
    // brackets.
    int levelOf(size_t begin) const {
        if (pieces_[begin].kind == PieceKind::close) {
            return level_[pieces_[begin].partner];
        }
        const size_t bracket = opener_[begin];
        const size_t first = bracket == kNone ? 0 : bracket + 1;
        size_t last = begin;
        while (last > first && isComment(pieces_[last - 1])) {
            --last;
        }
        const bool isFirst = last == first;
        if (bracket == kNone) {
            return begin > 0 && (start_.isInStep || !isFirst) ? 1 : 0;
        }
        const PieceKind before = pieces_[last - 1].kind;
        const bool goesOn = !isFirst && before != PieceKind::semicolon;
        return level_[bracket] + (goesOn ? 2 : 1);
    }

    std::u16string lineText(size_t begin, size_t end) const {
        std::u16string result;
        for (size_t i = begin; i < end; ++i) {
            if (i > begin && needsBlank(pieces_[i - 1], pieces_[i])) {
                result += u' ';
            }
            result += pieces_[i].text;
        }
        return result;
    }

    // Whether a line is too long, without a comment at its end, which cannot be broken.
    bool isTooLong(size_t begin, size_t end, int level) const {
        if (style_.width == 0) {
            return false;
        }
        end -= end > begin + 1 && pieces_[end - 1].kind == PieceKind::lineComment ? 1 : 0;
        const std::u16string line = lineText(begin, end);
        size_t column = begin == 0 ? start_.column : Characters(indent(level)).count();
        for (size_t start = 0; start <= line.size();) {
            const size_t stop = std::min(line.find_first_of(u"\r\n", start), line.size());
            if (column + Characters(std::u16string_view(line).substr(start, stop - start)).count() >
                style_.width) {
                return true;
            }
            start = stop + 1;
            column = 0;
        }
        return false;
    }

    // Breaks a line at its outermost semicolons, else operators, else brackets. Returns false when it has
    // none.
    bool breakLine(size_t begin, size_t end) {
        for (int depth = lowestDepth(begin, end); depth <= highestDepth(begin, end); ++depth) {
            if (breakAfterSemicolons(begin, end, depth) || breakBeforeOperators(begin, end, depth) ||
                breakLongestBrackets(begin, end, depth)) {
                return true;
            }
        }
        return false;
    }

    int lowestDepth(size_t begin, size_t end) const {
        return *std::min_element(depth_.begin() + static_cast<long>(begin),
                                 depth_.begin() + static_cast<long>(end));
    }
    int highestDepth(size_t begin, size_t end) const {
        return *std::max_element(depth_.begin() + static_cast<long>(begin),
                                 depth_.begin() + static_cast<long>(end));
    }

    // Breaks the line before a piece, but keeps a comment at the end of a line there.
    bool breakBefore(size_t piece, size_t end) {
        while (piece < end && pieces_[piece].kind == PieceKind::lineComment) {
            ++piece;
        }
        if (piece >= end || pieces_[piece].breaks > 0) {
            return false;
        }
        pieces_[piece].breaks = 1;
        return true;
    }

    bool isInRepetition(size_t piece) const {
        return opener_[piece] != kNone && pieces_[opener_[piece]].isTight;
    }

    bool breakAfterSemicolons(size_t begin, size_t end, int depth) {
        bool isBroken = false;
        if (depth == 0) {
            return false; // between the options of a script step
        }
        for (size_t i = begin; i + 1 < end; ++i) {
            if (pieces_[i].kind == PieceKind::semicolon && depth_[i] == depth && !keepsPair(i)) {
                isBroken = breakBefore(i + 1, end) || isBroken;
            }
        }
        return isBroken;
    }

    // Whether a semicolon is between a condition of Case and its result, which stay on one line: it is the
    // first, third ... of the call.
    bool keepsPair(size_t semicolon) const {
        const size_t bracket = opener_[semicolon];
        return bracket != kNone && bracket > 0 && pieces_[bracket - 1].text == u"Case" &&
               ordinal_[semicolon] % 2 == 1;
    }

    bool breakBeforeOperators(size_t begin, size_t end, int depth) {
        int weakest = level::kPower + 1;
        const auto counts = [&](size_t i) {
            return pieces_[i].kind == PieceKind::binary && depth_[i] == depth &&
                   pieces_[i].level != level::kCompare && !isInRepetition(i);
        };
        for (size_t i = begin + 1; i < end; ++i) {
            weakest = counts(i) ? std::min(weakest, pieces_[i].level) : weakest;
        }
        bool isBroken = false;
        for (size_t i = begin + 1; i < end; ++i) {
            if (counts(i) && pieces_[i].level == weakest) {
                isBroken = breakBefore(i, end) || isBroken;
            }
        }
        return isBroken;
    }

    // Breaks the longest brackets of a line, but none around a single word.
    bool breakLongestBrackets(size_t begin, size_t end, int depth) {
        std::vector<std::pair<size_t, size_t>> byLength;
        for (size_t i = begin; i < end; ++i) {
            const size_t length = std::min(pieces_[i].partner, end) - i - 1;
            if (pieces_[i].kind == PieceKind::open && depth_[i] == depth && !pieces_[i].isTight &&
                length > 1) {
                byLength.emplace_back(length, i);
            }
        }
        std::sort(byLength.rbegin(), byLength.rend());
        return std::any_of(byLength.begin(), byLength.end(),
                           [&](const auto& bracket) { return breakBrackets(bracket.second, end); });
    }

    // Whether a parenthesis is directly followed by a bracket, as in "Let ( [", which stay on one line.
    bool startsWithList(size_t bracket) const {
        const Piece& first = pieces_[bracket + 1];
        return pieces_[bracket].text == u"(" && first.kind == PieceKind::open && first.text == u"[";
    }

    // Breaks after the opening bracket, after its semicolons, and before the closing one.
    bool breakBrackets(size_t bracket, size_t end) {
        const size_t close = pieces_[bracket].partner;
        const bool afterOpening = startsWithList(bracket)
                                      ? breakBrackets(bracket + 1, end)
                                      : bracket + 1 != close && breakBefore(bracket + 1, end);
        const bool inside = breakAfterSemicolons(bracket, std::min(close, end), depth_[bracket] + 1);
        return breakBefore(close, end) || inside || afterOpening;
    }

    std::vector<Piece> pieces_;
    const FormatStyle& style_;
    const LayoutStart& start_;
    std::vector<int> level_; // by piece: the level of its line
    // By piece; a bracket counts as outside itself.
    std::vector<int> depth_;     // the number of open brackets
    std::vector<size_t> opener_; // the innermost open bracket, or kNone
    std::vector<int> ordinal_;   // the number of semicolons in that bracket so far
};

} // namespace

std::u16string layOut(std::vector<Piece> pieces, const FormatStyle& style, const LayoutStart& start) {
    return Layout(std::move(pieces), style, start).text();
}

} // namespace host
