#pragma once

// The table of operators. The lexer uses their spellings, the parser their levels, the evaluator their
// meanings.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace host {

enum class Operator : uint8_t {
    power,
    multiply,
    divide,
    add,
    subtract,
    join,
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    logicalAnd,
    logicalOr,
    logicalXor,
    logicalNot,
};

// Levels of precedence: operators of a higher level bind first, those of one level from left to right.
namespace level {
inline constexpr int kOr = 1;
inline constexpr int kAnd = 2;
inline constexpr int kCompare = 3;
inline constexpr int kJoin = 4;
inline constexpr int kSum = 5;
inline constexpr int kProduct = 6;
inline constexpr int kPower = 7;
inline constexpr int kNone = 0; // not a binary operator
} // namespace level

struct OperatorRow {
    std::u16string_view spelling;
    Operator meaning;
    int level;
};

// A spelling comes after all that begin with it, as the lexer takes the first that matches.
inline constexpr std::array kOperators = {
    OperatorRow{u"^", Operator::power, level::kPower},
    OperatorRow{u"*", Operator::multiply, level::kProduct},
    OperatorRow{u"/", Operator::divide, level::kProduct},
    OperatorRow{u"+", Operator::add, level::kSum},
    OperatorRow{u"-", Operator::subtract, level::kSum},
    OperatorRow{u"&", Operator::join, level::kJoin},
    OperatorRow{u"=", Operator::equal, level::kCompare},
    OperatorRow{u"<>", Operator::notEqual, level::kCompare},
    OperatorRow{u"\u2260", Operator::notEqual, level::kCompare},
    OperatorRow{u"<=", Operator::lessOrEqual, level::kCompare},
    OperatorRow{u"\u2264", Operator::lessOrEqual, level::kCompare},
    OperatorRow{u"<", Operator::less, level::kCompare},
    OperatorRow{u">=", Operator::greaterOrEqual, level::kCompare},
    OperatorRow{u"\u2265", Operator::greaterOrEqual, level::kCompare},
    OperatorRow{u">", Operator::greater, level::kCompare},
    OperatorRow{u"and", Operator::logicalAnd, level::kAnd},
    OperatorRow{u"or", Operator::logicalOr, level::kOr},
    OperatorRow{u"xor", Operator::logicalXor, level::kOr},
    OperatorRow{u"not", Operator::logicalNot, level::kNone},
};

// Whether the operator is a word, which is lexed as a whole, and not a symbol.
constexpr bool isWord(const OperatorRow& row) {
    return row.spelling[0] >= u'a' && row.spelling[0] <= u'z';
}

constexpr bool longerSpellingsComeFirst() {
    for (size_t later = 0; later < kOperators.size(); ++later) {
        for (size_t first = 0; first < later; ++first) {
            if (kOperators[later].spelling.starts_with(kOperators[first].spelling)) {
                return false;
            }
        }
    }
    return true;
}
static_assert(longerSpellingsComeFirst());

} // namespace host
