#pragma once

// Runs calculation tests.

#include "host/check/calc_file.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

class Host;

// How one check ended.
struct CheckResult {
    int line = 0;
    std::string text;    // the calculation; for a file without one, nothing
    std::string failure; // what was expected and what came, with the place where they differ; empty: passed
    double seconds = 0;
};

// Who is told how a file's checks go.
class CheckListener {
  public:
    virtual ~CheckListener() = default;
    // Before a calculation is evaluated, so that one which ends the program is known; line 0 after the last.
    virtual void begins(int line, const std::string& text) = 0;
    virtual void ended(CheckResult result) = 0;
};

// Which checks count. A file is one session, so the others are evaluated as well, but not judged.
struct CheckFilter {
    std::vector<std::string> only;    // texts; empty: all
    std::vector<std::string> without; // texts; none of them

    // Whether a check counts: a text is looked for, without regard to case, in the calculation and in
    // "FILE:LINE".
    bool accepts(const std::string& file, int line, const std::string& text) const;
    bool isEmpty() const { return only.empty() && without.empty(); }
};

// Runs one file in the session of [host]. A file without checks fails. Throws FileError.
void runCalcTest(Host& host, const std::filesystem::path& file, const CheckFilter& filter,
                 CheckListener& listener);

} // namespace host
