#pragma once

// What shells complete on the command line of fmhost that only the host knows.

#include "tools/command_line/completion.h"

namespace host {

// Returns functions for names of functions, which the plug-in of the line has registered or the language has,
// for scripts and for locales.
command_line::Completers completers();

} // namespace host
