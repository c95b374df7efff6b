/// How a plug-in calls the host, and how every call reports a failure.
///
/// Every object of the host (a text, a number, a container, ...) is opaque to a plug-in: its class declares
/// methods and nothing else, and each method calls one C function of the host's library.
#pragma once

#include "FMXExtern.h"

#include <exception>
#include <new>
#include <type_traits>

/// Marks a function that the host's library exports.
#define FMX_API __attribute__((visibility("default")))

namespace fmx {

/// The exception block: the last argument of every function of the host, which reports its failures in it.
struct _fmxcpt {
    int32 version = 1;
    int32 code = 0;

    /// Throws what the block reports: `std::bad_alloc` for code 1, `std::exception` for code 2.
    void Check() const {
        if (code == 1) {
            throw std::bad_alloc();
        }
        if (code == 2) {
            throw std::exception();
        }
    }
};
static_assert(sizeof(_fmxcpt) == 8, "the exception block is two 32-bit integers");

/// Calls a function of the host with a fresh exception block and throws what the block then reports.
template <class Function, class... Arguments>
inline std::invoke_result_t<Function, Arguments..., _fmxcpt&> Call(Function function,
                                                                   Arguments&&... arguments) {
    using Result = std::invoke_result_t<Function, Arguments..., _fmxcpt&>;
    _fmxcpt block;
    if constexpr (std::is_void_v<Result>) {
        function(static_cast<Arguments&&>(arguments)..., block);
        block.Check();
    } else {
        Result result = function(static_cast<Arguments&&>(arguments)..., block);
        block.Check();
        return result;
    }
}

} // namespace fmx

/// What every opaque class of the interface has in common: a plug-in neither makes nor copies its objects
/// itself, and `delete` hands one back to the host.
#define FMX_OPAQUE_CLASS(name)                                                                               \
    name() = delete;                                                                                         \
    name(const name&) = delete;                                                                              \
    static void operator delete(void* self) {                                                                \
        _fmxcpt block;                                                                                       \
        FM_##name##_Delete(self, block);                                                                     \
    }
