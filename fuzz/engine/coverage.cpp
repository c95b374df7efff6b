// The coverage of what GCC has compiled, in the form in which libFuzzer takes it. GCC calls a function at every basic
// block; libFuzzer reads counters that clang would have put there. Here the one feeds the other: a counter for each
// step from a block to the next. A library of its own, so that all libraries of a fuzzer count in one place.

#include <array>
#include <cstdint>

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): names of the compiler and of libFuzzer

extern "C" {
void __sanitizer_cov_8bit_counters_init(uint8_t* begin, uint8_t* end);
void __sanitizer_cov_pcs_init(const uintptr_t* begin, const uintptr_t* end);
__attribute__((visibility("default"))) void __sanitizer_cov_trace_pc();
__attribute__((visibility("default"))) void __sanitizer_cov_trace_cmpf(float left, float right);
__attribute__((visibility("default"))) void __sanitizer_cov_trace_cmpd(double left, double right);
}

namespace {

// Some tens of thousands of steps are met by the largest fuzzers; two that share a counter are seldom.
constexpr unsigned kBits = 17;
constexpr std::size_t kCounters = std::size_t{1} << kBits;

// What libFuzzer knows of a counter: an address, by which it counts those that were met, and whether a function begins.
struct Place {
    uintptr_t address;
    uintptr_t beginsFunction;
};

alignas(4096) std::array<uint8_t, kCounters> counters;
std::array<Place, kCounters> places;
__attribute__((tls_model("initial-exec"))) thread_local uintptr_t previous;

// Registers the counters before anything is counted.
const bool registered = [] {
    for (std::size_t i = 0; i < kCounters; ++i) {
        places[i] = {i + 1, 0};
    }
    __sanitizer_cov_8bit_counters_init(counters.data(), counters.data() + counters.size());
    const auto* begin = reinterpret_cast<const uintptr_t*>(places.data());
    __sanitizer_cov_pcs_init(begin, begin + 2 * places.size());
    return true;
}();

// Returns a place among the counters for an address: Fibonacci hashing.
uintptr_t hashed(uintptr_t address) {
    return (address * 0x9E3779B97F4A7C15U) >> (64 - kBits);
}

} // namespace

void __sanitizer_cov_trace_pc() {
    const uintptr_t here = hashed(reinterpret_cast<uintptr_t>(__builtin_return_address(0)));
    uint8_t& counter = counters[here ^ previous];
    counter = static_cast<uint8_t>(counter + 1 == 256 ? 255 : counter + 1);
    previous = here >> 1U;
}

// libFuzzer learns from comparisons of integers only.
void __sanitizer_cov_trace_cmpf(float /*left*/, float /*right*/) {}
void __sanitizer_cov_trace_cmpd(double /*left*/, double /*right*/) {}

// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
