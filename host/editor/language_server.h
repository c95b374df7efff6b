#pragma once

// The language server: answers editors over a pair of streams, by the Language Server Protocol (JSON-RPC with
// Content-Length headers).

#include "host/check/checker.h"

#include <iosfwd>

namespace host {

// Serves until the editor says exit or its stream ends. Messages that can not be understood are answered with
// an error of the protocol. The custom functions of a document's folder are added to [functions] while it is
// looked at, as the editor has them. Returns whether the editor asked for the shut-down first, as it must.
bool serveLanguage(std::istream& in, std::ostream& out, FunctionRegistry& functions,
                   const StepRegistry& steps);

} // namespace host
