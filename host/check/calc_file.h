#pragma once

// Calculation tests: files of calculations, each with a line that says what it must give.
//
//     1 + 1                  a calculation; a backslash at the end of the line goes on in the next one
//     = 2                    the whole result; ¶ stands for a return, nothing for empty
//     ~ \d+                  or: a pattern that the whole result matches
//     ! is called            or: a part of the error message
//     # a comment
//
// In a Markdown file (.md) only the blocks that are fenced as calc count.

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

// What is wrong with the form of a test file: a line without its check, a check without its calculation.
struct CalcTestFault {
    int line;
    std::string message;
};

struct CalcTestFile {
    std::vector<CalcCheck> checks;
    std::vector<CalcTestFault> faults;
};

// Reads the text of a test file; [isMarkdown] as described above.
CalcTestFile parseCalcTest(std::string_view text, bool isMarkdown);

} // namespace host
