#pragma once

// The one guard at the edge of the library: no exception crosses it, each becomes a code in the exception
// block.

#include "FMWrapper/FMXClient.h"

#include <atomic>
#include <new>
#include <type_traits>

namespace host {

inline constexpr fmx::int32 kOutOfMemory = 1;
inline constexpr fmx::int32 kUnknownFailure = 2;

// Calls that are left until the one that a test wants to fail, itself included; 0 when none is to fail.
extern std::atomic<fmx::int32> callsUntilFailure;

// Counts a call; answers the code that it must report, or 0.
fmx::int32 countedFailure() noexcept;

// What a call that failed answers: nothing, zero, null, or an object that stands for none.
template <class Result>
Result failedResult() {
    if constexpr (std::is_reference_v<Result>) {
        static std::remove_cvref_t<Result> none{};
        return none;
    } else if constexpr (!std::is_void_v<Result>) {
        return Result{};
    }
}

// Does the work of a call. Whatever it throws, or a test wanted, is reported in the block.
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
