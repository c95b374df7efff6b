#pragma once

// Runs calculation tests.

#include "host/check/calc_file.h"

#include <filesystem>
#include <iosfwd>

namespace host {

class Host;

struct CalcTestCount {
    int passed = 0;
    int failed = 0;
};

// Runs one file in the session of [host] and prints each failure to [out]. A file without checks fails.
// Throws FileError.
CalcTestCount runCalcTest(Host& host, const std::filesystem::path& file, std::ostream& out);

} // namespace host
