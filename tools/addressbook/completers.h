#pragma once

// What shells complete on the command line of addressbook that only the address book knows.

#include "tools/command_line/completion.h"

namespace addressbook::tool {

// Returns functions for names of fields and groups and for unique ids. They know nothing when the address
// book cannot be opened.
command_line::Completers completers();

} // namespace addressbook::tool
