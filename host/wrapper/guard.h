#pragma once

// The guard around every call of the interface: no exception leaves the library, each becomes a code in the
// call's exception block.

#include "FMWrapper/FMXClient.h"

#include <atomic>
#include <new>
#include <type_traits>

namespace host {

inline constexpr fmx::int32 kOutOfMemory = 1;
inline constexpr fmx::int32 kUnknownFailure = 2;

// The number of calls up to and with the one that a test wants to fail; 0 when none is to fail.
extern std::atomic<fmx::int32> callsUntilFailure;

// Counts a call; returns the code that it must report, or 0.
fmx::int32 countedFailure() noexcept;

// Returns the result of a call that failed: nothing, zero, null, or a reference to a default object.
template <class Result>
Result failedResult() {
    if constexpr (std::is_reference_v<Result>) {
        static std::remove_cvref_t<Result> none{};
        return none;
    } else if constexpr (!std::is_void_v<Result>) {
        return Result{};
    }
}

// Runs the work of a call. Reports whatever it throws, or a failure that a test asked for, in the block.
template <class Work>
std::invoke_result_t<Work> guarded(fmx::_fmxcpt& block, Work work) noexcept {
    using Result = std::invoke_result_t<Work>;
    if (callsUntilFailure.load(std::memory_order_relaxed) != 0) [[unlikely]] {
        if (const fmx::int32 code = countedFailure(); code != 0) {
            block.code = code;
            return failedResult<Result>();
        }
    }
    try {
        return work();
    } catch (const std::bad_alloc&) {
        block.code = kOutOfMemory;
    } catch (...) {
        block.code = kUnknownFailure;
    }
    return failedResult<Result>();
}

} // namespace host
