#pragma once

// The command line of the commands that keep the book in step with servers.

#include "tools/addressbook/commands.h"

#include <CLI/CLI.hpp>

namespace addressbook::tool {

// Adds the commands to [app]. Parsing it sets [work] to the function of the command that the user gives.
void declareSyncCommands(CLI::App& app, Options& options, int (*&work)(const Options&));

} // namespace addressbook::tool
