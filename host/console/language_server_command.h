#pragma once

// `fmhost lsp`.

#include "host/console/exit_code.h"
#include "host/console/host.h"

namespace host {

// Serves an editor over standard input and output. What a plug-in prints goes to standard error. A plug-in
// that can not be loaded is told there, and the editor is served without it. Returns failure when the editor
// leaves without having asked for the shut-down.
ExitCode runLanguageServer(const HostOptions& options);

} // namespace host
