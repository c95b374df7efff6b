// Holds every input of a fuzzer to its time: processor time, as other programs may have the processors. The linker puts
// this function between libFuzzer and the door (--wrap).

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): names that the linker makes

extern "C" {
int __real_LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
int __wrap_LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
}

namespace {

constexpr double kMostSeconds = 1;

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace

int __wrap_LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static bool warm = false; // the first input pays for what is set up once
    static double slowest = 0.001;
    const double begin = processorSeconds();
    const int result = __real_LLVMFuzzerTestOneInput(data, size);
    const double seconds = processorSeconds() - begin;
    if (warm && seconds > slowest * 1.1) {
        slowest = seconds;
        // scripts/fuzz reads the last of these lines.
        (void)std::fprintf(stderr, "slowest input: %.0f ms\n", seconds * 1000);
        if (seconds > kMostSeconds) {
            (void)std::fprintf(stderr, "An input took more than a second.\n");
            std::abort();
        }
    }
    warm = true;
    return result;
}

// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
