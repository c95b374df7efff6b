#pragma once

// The interactive prompt.

#include "host/console/exit_code.h"

namespace host {

class Host;

// Reads calculations from the terminal until end of input or `quit`, and prints their results. An error is
// printed and the prompt goes on. While it waits, the plug-in gets its idle time. The lines are kept in
// $XDG_STATE_HOME/fmhost/history, or
// ~/.local/state/fmhost/history.
ExitCode runPrompt(Host& host);

} // namespace host
