#pragma once

// Lists of functions on the terminal: the plug-in's and the language's, by category, or found by a word.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Which functions `fmhost functions` shows, and how.
struct FunctionQuery {
    bool all = false;    // the language's too, by category
    bool asJson = false; // with all that is known of each
    std::string word;    // only those whose name or description has it, the language's too
};

// Prints the functions, and the plug-in's script steps. A word that none has is an error.
ExitCode listFunctions(const Host& host, const FunctionQuery& query);

// What is known of a function or a Get name of the language: prototypes, what it is for, its category;
// nothing for a name that there is not. Letter case does not count.
std::optional<std::string> functionSheet(std::u16string_view name);

} // namespace host
