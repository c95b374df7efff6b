#pragma once

// The interactive prompt.

#include "host/console/exit_code.h"

namespace host {

class Host;

// Reads calculations from the terminal until end of input or `quit`, and prints their results. Prints errors
// and continues. While it waits for input, the plug-in gets idle messages. The history of lines is kept in
// $XDG_STATE_HOME/fmhost/history, or ~/.local/state/fmhost/history.
ExitCode runPrompt(Host& host);

} // namespace host
