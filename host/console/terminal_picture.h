#pragma once

// Pictures in a terminal.

#include "host/values/container.h"

#include <string>

namespace host {

// Returns what draws the container's picture in the terminal that $TERM and its like name, by the program chafa:
// the terminal's own graphics, or coloured characters, at most [columns] by [rows] and never larger than the
// picture. Empty when the container has no picture, chafa is not installed, fails, or takes longer than five
// seconds.
std::string terminalPicture(const Container& container, size_t columns, size_t rows);

} // namespace host
