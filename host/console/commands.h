#pragma once

// What the commands of the program do once the command line is read. Data goes to standard output. Errors
// that end a command are thrown: LoadError, FileError, CalcError.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

// parse for a calculation that can not be understood, failure for one that can not be evaluated.
ExitCode exitCodeOf(const CalcError& error);

ExitCode showInfo(const Host& host);

// Each in turn, one result a line; "-" stands for the calculations on standard input.
ExitCode evaluateAll(Host& host, const std::vector<std::string>& calculations);

// [script] is a file, or a name in the host's folder of scripts. With [showResult] the script's result is
// printed.
ExitCode runScript(Host& host, const std::string& script, const std::string& parameter, bool showResult);

} // namespace host
