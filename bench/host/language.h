#pragma once

// The calculation language without a plug-in, against straight C++ that does the same work.

#include "bench/report/figures.h"

namespace bench {

// Measures, in processor time, loops, lists, JSON and substitution; medians of several runs, of calculations and of
// C++ in turn. Throws std::exception when both do not come to the same result.
Figures measureLanguage();

} // namespace bench
