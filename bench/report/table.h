#pragma once

#include "bench/report/figures.h"

#include <cstddef>
#include <map>
#include <string>

namespace bench {

// Returns the table of all work with targets, figures and verdicts; [figures] are by the number of people.
std::string table(const std::map<std::size_t, Figures>& figures);

} // namespace bench
