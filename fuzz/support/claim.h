#pragma once

// What a door claims of the code behind it. A claim that does not hold ends the fuzzer, which keeps the input.

#include <cstdio>
#include <cstdlib>

namespace fuzz {

// Ends the program with a sentence when [holds] is false.
inline void claim(bool holds, const char* sentence) {
    if (!holds) {
        (void)std::fprintf(stderr, "This does not hold: %s\n", sentence);
        std::abort();
    }
}

} // namespace fuzz
