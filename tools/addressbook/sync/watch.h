#pragma once

// The command `sync --watch`.

#include "tools/addressbook/commands.h"

namespace addressbook::tool {

// Keeps the chosen address books in step until a signal comes: at once when another program has saved something here,
// and every Options::sync.watch seconds. A server that cannot be reached is told of once, and tried again after pauses
// that grow. Throws Interrupted, StoreError, and Failure when there is nothing to keep in step.
int keepInStep(const Options& options);

} // namespace addressbook::tool
