#pragma once

#include "bench/report/figures.h"

#include <cstddef>
#include <map>
#include <string>

namespace bench {

// Returns the table of all work with targets, figures and verdicts; [figures] are by the number of people.
std::string table(const std::map<std::size_t, Figures>& figures);

// Returns the same as JSON: an array with an object for each row that was measured, of "level", "work",
// "kind", "limit" and, by the number of people, "measured", "reference" (seconds or bytes) and "figure" (the
// quantity that the limit limits).
std::string tableAsJson(const std::map<std::size_t, Figures>& figures);

} // namespace bench
