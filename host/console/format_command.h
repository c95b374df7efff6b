#pragma once

// `fmhost format`: formats scripts and calculations.

#include "host/console/exit_code.h"
#include "host/editor/format.h"

#include <string>
#include <vector>

namespace host {

struct FormatCommand {
    std::vector<std::string> files; // "-" or none: a calculation from standard input, to standard output
    FormatStyle style;
    bool check = false; // writes nothing: names the files that would change, and fails if there are any
};

// Formats files in place, each atomically, and prints the names of those that it changed. Continues with the
// other files when one cannot be read, and returns the exit code of the first error.
ExitCode runFormat(const FormatCommand& command);

} // namespace host
