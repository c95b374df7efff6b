#pragma once

// `fmhost format`.

#include "host/console/exit_code.h"
#include "host/editor/format.h"

#include <string>
#include <vector>

namespace host {

struct FormatCommand {
    std::vector<std::string> files; // - or none: a calculation from standard input, to standard output
    FormatStyle style;
    bool check = false; // write nothing: name the files that would change, and fail when there are any
};

// Formats files in place and names those that it changed; a file is there as it was or whole. The others go
// on when one can not be read: the first error's exit code is answered.
ExitCode runFormat(const FormatCommand& command);

} // namespace host
