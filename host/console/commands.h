#pragma once

// The commands of the program, without the parsing of the command line. They write to standard output and
// return the exit status. Errors that end a command are thrown: LoadError, FileError, CalcError.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

// Returns `parse` for a calculation that cannot be parsed, `failure` for one that cannot be evaluated.
ExitCode exitCodeOf(const CalcError& error);

ExitCode showInfo(const Host& host);

// Evaluates calculations in turn and prints each result on a line; "-" stands for the calculations on
// standard input.
ExitCode evaluateAll(Host& host, const std::vector<std::string>& calculations);

// Runs a script: [script] is a file, or a name in the host's folder of scripts. Prints its result when
// [showResult].
ExitCode runScript(Host& host, const std::string& script, const std::string& parameter, bool showResult);

} // namespace host
