#pragma once

// Lists of functions on the terminal: those of the plug-in and of the language, by category or by a word.

#include "host/console/exit_code.h"
#include "host/console/host.h"

#include <string>
#include <vector>

namespace host {

// Which functions `fmhost functions` shows, and how.
struct FunctionQuery {
    bool all = false;     // also those of the language, by category
    bool asJson = false;  // as JSON, with all details
    bool counted = false; // only how many there are in each category
    std::string word;     // only those with it in their name or description, also those of the language
};

// Prints the functions, and the plug-in's script steps. When no function has the word, that is an error.
ExitCode listFunctions(const Host& host, const FunctionQuery& query);

// A function as a word: a plug-in's, the language's, or a name in Get ( ).
struct FunctionName {
    std::string name, prototype;
};
std::vector<FunctionName> functionNames(const Host& host);

} // namespace host
