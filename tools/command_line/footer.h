#pragma once

// What stands below the options in --help, taken apart, so that it is written once: lines that begin with
// "Exit status:", examples (indented below a line "Example:", "Examples:" or "Example (of what):"), and
// paragraphs, whose indented lines are tables and stay as they are.

#include <string>
#include <vector>

namespace command_line {

struct Block {
    enum class Kind { paragraph, table, example, exitStatus } kind = Kind::paragraph;
    std::string text; // lines separated by line feeds; of paragraphs and the exit status one line
};

// Returns the blocks of a footer in their order.
std::vector<Block> blocksOf(const std::string& footer);

} // namespace command_line
