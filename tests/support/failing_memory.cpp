#include "tests/support/failing_memory.h"

#include <cerrno>
#include <cstddef>

namespace {

constexpr long kNone = -1, kMade = -2;
thread_local constinit long left = kNone;

bool failsNow() {
    if (left < 0) {
        return false;
    }
    if (left-- > 0) {
        return false;
    }
    left = kMade;
    errno = ENOMEM;
    return true;
}

} // namespace

// The program's own definitions win over the C library's, which pass under these names, too.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return failsNow() ? nullptr : __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return failsNow() ? nullptr : __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) {
    return failsNow() ? nullptr : __libc_realloc(memory, size);
}
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

namespace support {

void failAllocation(long allocations) {
    left = allocations;
}

bool allocationFailed() {
    const bool failed = left == kMade;
    left = kNone;
    return failed;
}

} // namespace support
