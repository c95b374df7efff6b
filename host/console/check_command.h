#pragma once

// `fmhost check`: reports what is wrong with scripts, custom functions and calculations, without running
// them.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

struct CheckPlan {
    std::vector<std::string> paths; // files, or folders that are searched for files of known kinds
    std::string format = "text";    // text, json, sarif or github
    std::string folder;             // the folder of scripts and custom functions; empty: that of each file
};

// Checks all files and prints what is wrong to standard output. Returns ExitCode::parse when there is an
// error, else ExitCode::ok, also with warnings. Throws FileError.
ExitCode checkFiles(Host& host, const CheckPlan& plan);

} // namespace host
