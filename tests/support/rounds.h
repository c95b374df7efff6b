#pragma once

// How often tests repeat what they do with random values.

namespace support {

// Returns a number of rounds, of which a quarter is left under sanitizers: there each takes five to fifteen times as
// long, and what they look for shows in the first.
constexpr int rounds(int number) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return number / 4;
#else
    return number;
#endif
}

} // namespace support
