#pragma once

// Files of calculation tests: calculations, each followed by a line with what it must give.
//
//     1 + 1                  a calculation; a backslash at the end of a line continues it on the next
//     = 2                    the whole result; ¶ stands for a return, nothing for empty
//     ~ \d+                  or: a regular expression that the whole result matches
//     ! is called            or: a part of the error message
//     # a comment
//
// In a Markdown file (.md) only the blocks that are fenced as calc are read.

#include <string>
#include <vector>

namespace host {

enum class CheckKind : char { equals = '=', matches = '~', fails = '!' };

struct CalcCheck {
    int line;         // where the calculation starts
    std::string text; // the calculation, with line ends where it was continued
    CheckKind kind;
    std::string expected;
};

// An error in the form of a test file: a calculation without a check, or a check without a calculation.
struct CalcTestFault {
    int line;
    std::string message;
};

struct CalcTestFile {
    std::vector<CalcCheck> checks;
    std::vector<CalcTestFault> faults;
};

// Whether a line says what the calculation before it must give.
template <class Text>
bool isCalcCheck(const Text& line) {
    return !line.empty() && (line[0] == '=' || line[0] == '~' || line[0] == '!') &&
           (line.size() == 1 || line[1] == ' ');
}

// Parses the text of a test file, which is Markdown when [isMarkdown].
CalcTestFile parseCalcTest(std::string_view text, bool isMarkdown);

} // namespace host
