#pragma once

// Completions of a command line for shells. Commands, options and values that an option names (a|b) come from
// the command line itself; a program adds what only it knows, as names of groups.

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace command_line {

// A whole word that fits, and what to show beside it.
struct Candidate {
    std::string word, description;
};

// What fits at the end of a line.
struct Completion {
    enum class Paths { none, files, folders };

    Paths paths = Paths::none; // of the file system, which the shell itself completes
    bool continues = false;    // more may follow in the same word, so that no blank is added
    std::vector<Candidate> candidates;
};

// What stands before the word that is completed.
struct Typed {
    std::string command;                        // empty: none yet
    std::map<std::string, std::string> options; // by name ("--book"), with their values; flags have none
    std::vector<std::string> arguments;
    std::string word; // what there is of the word, without the option in "--option=word"

    // Returns the value of an option; empty when it is not there.
    std::string value(const std::string& option) const;
};

// Functions that know what fits, by the name of an option or argument: "--group", "ID". Candidates that do
// not begin with the word may be among them.
using Completers = std::map<std::string, std::function<Completion(const Typed&)>>;

// Returns what fits at the end of a line, which begins with the program's name.
Completion complete(const CLI::App& program, const Completers& completers, std::string_view line);

} // namespace command_line
