#include "host/calc/stack_limit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <pthread.h>
#include <sys/resource.h>

namespace host {

namespace {

constexpr size_t kReserve = size_t{1} << 20; // bytes
// Linux keeps at least 128 MB below the main thread's stack free of mappings.
#ifdef __SANITIZE_ADDRESS__
// The address sanitizer loses track of more than 64 MB when an exception leaves them.
constexpr rlim_t kMainStack = rlim_t{60} << 20;
#else
constexpr rlim_t kMainStack = rlim_t{112} << 20;
#endif

// Returns the address below which the stack must not grow.
uintptr_t lowestAddress() {
    pthread_attr_t attributes;
    void* lowest = nullptr;
    size_t size = 0;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return 0;
    }
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<uintptr_t>(lowest) + std::min(kReserve, size / 4);
}

} // namespace

bool isStackShort() {
    static thread_local const uintptr_t kLowest = lowestAddress();
    return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < kLowest;
}

void growStack() {
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur < kMainStack) {
        limit.rlim_cur = std::min(kMainStack, limit.rlim_max);
        setrlimit(RLIMIT_STACK, &limit);
    }
}

} // namespace host
