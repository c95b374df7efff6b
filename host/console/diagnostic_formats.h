#pragma once

// Writing diagnostics for people and for programs.

#include "host/check/checker.h"

#include <iosfwd>
#include <string_view>
#include <vector>

namespace host {

// Writes diagnostics in one of the formats
//   text    FILE:LINE:COLUMN: error: MESSAGE
//   json    an array of objects
//   sarif   SARIF 2.1.0, for code scanning
//   github  workflow commands, which annotate the lines of a change
void printDiagnostics(std::ostream& out, const std::vector<Diagnostic>& diagnostics, std::string_view format);

} // namespace host
