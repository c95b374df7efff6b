#pragma once

// Manual pages (man), made of the command line and what --help says.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

namespace command_line {

// Returns the page of a program, or of one of its commands, in roff with the macros of man(7). [version]
// stands at its foot.
std::string manualOf(const CLI::App& app, const std::string& version);

// Writes PROGRAM.1, PROGRAM-COMMAND.1 for each command, and a page for each of theirs into a folder. Throws std::runtime_error when a
// file cannot be written.
void writeManuals(const CLI::App& program, const std::string& version, const std::filesystem::path& folder);

} // namespace command_line
