#pragma once

// `fmhost check`: says what is wrong with scripts, custom functions and calculations, without running them.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

struct CheckPlan {
    std::vector<std::string> paths; // files, or folders that are searched for files of known kinds
    std::string format = "text";    // text, json, sarif or github
    std::string folder;             // of the scripts and custom functions; empty: that of each file
};

// Checks all files, prints what is wrong to standard output, and returns ExitCode::parse when there is an error.
// Warnings alone are ExitCode::ok. Throws FileError.
ExitCode checkFiles(Host& host, const CheckPlan& plan);

} // namespace host
