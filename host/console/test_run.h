#pragma once

// `fmhost test`: runs files of calculations, prints the failures, and writes a JUnit report.

#include "host/console/calc_test.h"
#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

struct TestPlan {
    std::vector<std::string> files;
    CheckFilter filter;
    int repeat = 1;    // how many times each file is run, each time in a new host
    std::string junit; // the file of the JUnit report; empty: none
};

// Runs each file in a host of its own. With several files, repetitions or a report, each run is a process of
// its own, too, so that a plug-in which ends the program only fails the calculation that called it. Throws
// LoadError, FileError.
ExitCode runTests(const HostOptions& options, const TestPlan& plan);

} // namespace host
