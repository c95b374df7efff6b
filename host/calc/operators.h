#pragma once

// The operators: spelling, strength, meaning. The lexer reads the spellings, the parser the strengths.

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

// How strongly operators bind; a higher number binds first. Operators of one level are read from left to
// right.
namespace level {
inline constexpr int kOr = 1;
inline constexpr int kAnd = 2;
inline constexpr int kCompare = 3;
inline constexpr int kJoin = 4;
inline constexpr int kSum = 5;
inline constexpr int kProduct = 6;
inline constexpr int kPower = 7;
inline constexpr int kNone = 0; // not written between two values
} // namespace level

struct OperatorRow {
    std::u16string_view spelling;
    Operator meaning;
    int level;
};

// A spelling that another one begins with stands after it: the lexer takes the first that fits.
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

// A word operator is lexed as a whole word, a symbol by its characters.
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
