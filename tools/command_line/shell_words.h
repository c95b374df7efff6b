#pragma once

// The words of a command as shells write it.

#include <string>
#include <string_view>
#include <vector>

namespace command_line {

// Returns the words of a line without their quotes and backslashes; the last is the one under the cursor at
// the end of the line, which may be empty. Quotes may be open. What a shell would put in place of variables,
// patterns or commands is not looked at.
std::vector<std::string> shellWords(std::string_view line);

} // namespace command_line
