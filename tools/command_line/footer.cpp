#include "tools/command_line/footer.h"

#include <sstream>
#include <string_view>

namespace command_line {

namespace {

constexpr std::string_view kExitStatus = "Exit status: ";

bool isExampleHeading(const std::string& line) {
    return line.starts_with("Example") && line.ends_with(':');
}

} // namespace

std::vector<Block> blocksOf(const std::string& footer) {
    std::vector<Block> blocks;
    bool inExamples = false;
    bool continues = false; // the block before goes on in this line
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || isExampleHeading(line)) {
            inExamples = !line.empty();
            continues = false;
            continue;
        }
        const bool indented = line.starts_with(' ');
        if (!indented) {
            inExamples = false;
        }
        const bool isExit = line.starts_with(kExitStatus);
        const Block::Kind kind = isExit       ? Block::Kind::exitStatus
                                 : !indented  ? Block::Kind::paragraph
                                 : inExamples ? Block::Kind::example
                                              : Block::Kind::table;
        // A line of plain text goes on in whatever plain text stands before it.
        const bool joins = continues && !isExit &&
                           (kind == blocks.back().kind || (kind == Block::Kind::paragraph &&
                                                           blocks.back().kind == Block::Kind::exitStatus));
        if (joins) {
            blocks.back().text += (indented ? '\n' : ' ') + line;
        } else {
            blocks.push_back({kind, isExit ? line.substr(kExitStatus.size()) : line});
        }
        continues = true;
    }
    return blocks;
}

} // namespace command_line
