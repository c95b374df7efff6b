#pragma once

#include "bench/report/figures.h"

#include <cstddef>
#include <map>
#include <string>

namespace bench {

// The table of all work with targets, figures and verdicts; [figures] by the number of people.
std::string table(const std::map<std::size_t, Figures>& figures);

} // namespace bench
