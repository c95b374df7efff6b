#pragma once

// Runs calculation tests.

#include "host/check/calc_file.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

class Host;

// The result of one check.
struct CheckResult {
    int line = 0;
    std::string text;    // the calculation; empty for a failure of the file as a whole
    std::string failure; // expected and actual result, with a mark where they differ; empty: passed
    double seconds = 0;
};

// Called while the checks of a file run.
class CheckListener {
  public:
    virtual ~CheckListener() = default;
    // Called before a calculation is evaluated, so that one which ends the program is known; with line 0
    // after the last.
    virtual void begins(int line, const std::string& text) = 0;
    virtual void ended(CheckResult result) = 0;
};

// Selects the checks that count. As a file is one session, the others are evaluated as well, but not judged.
struct CheckFilter {
    std::vector<std::string> only;    // a check must have one of these texts; empty: all checks
    std::vector<std::string> without; // a check must have none of these texts

    // Whether a check counts. Texts are looked for, without regard to case, in the calculation and in
    // "FILE:LINE".
    bool accepts(const std::string& file, int line, const std::string& text) const;
};

// Runs the checks of a file in the session of [host]. A file without checks fails. Throws FileError.
void runCalcTest(Host& host, const std::filesystem::path& file, const CheckFilter& filter,
                 CheckListener& listener);

} // namespace host
