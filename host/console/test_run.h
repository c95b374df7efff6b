#pragma once

// `fmhost test`: runs files of calculations, prints what failed, and writes a report for machines.

#include "host/console/calc_test.h"
#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

struct TestPlan {
    std::vector<std::string> files;
    CheckFilter filter;
    int repeat = 1;    // how often each file runs, each time from the start
    std::string junit; // the file of the report; empty: none
};

// Runs each file in a host of its own; several, repeated ones and those with a report each in a process of
// its own as well, so that a plug-in which ends the program fails the calculation that it was called in.
// Throws LoadError, FileError.
ExitCode runTests(const HostOptions& options, const TestPlan& plan);

} // namespace host
