#pragma once

// Tables of calculations with their expected results.

#include "host/calc/session.h"
#include "host/values/text.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

namespace host {

struct CalcRow {
    const char* calculation;
    const char* expected; // in UTF-8; a paragraph mark stands for a return
};

// Returns the result of a calculation, with paragraph marks for carriage returns, or "error " and the message
// with its place.
inline std::string outcome(Session& session, const std::string& calculation) {
    try {
        std::u16string text(session.evaluate(fromUtf8(calculation)).asText());
        for (char16_t& c : text) {
            c = c == u'\r' ? u'\u00B6' : c;
        }
        return toUtf8(text);
    } catch (const CalcError& error) {
        return "error " + error.summary();
    }
}

// Evaluates all rows in one session, and expects their results.
inline void expectRows(Session& session, std::initializer_list<CalcRow> rows) {
    for (const CalcRow& row : rows) {
        EXPECT_EQ(outcome(session, row.calculation), row.expected) << row.calculation;
    }
}

inline void expectRows(std::initializer_list<CalcRow> rows) {
    Session session;
    expectRows(session, rows);
}

} // namespace host
