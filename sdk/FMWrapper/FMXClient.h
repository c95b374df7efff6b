#pragma once

/// The means by which a plug-in calls the host, and by which every call reports a failure.
///
/// Every object of the host (a text, a number, a container, ...) is opaque to a plug-in: its class declares
/// methods and no data, and each method calls one C function of the host's library. The C functions never
/// throw; they report failures in the exception block, their last argument.
///
/// C++11 and later. A source includes each header whose classes it uses, in the order FMXTypes, FMXText,
/// FMXFixPt, FMXDateTime, FMXBinaryData, FMXData, FMXCalcEngine: they do not include one another.

#include "FMXExtern.h"

#include <exception>
#include <memory>
#include <new>

/// Marks a function that the host's library exports.
#define FMX_API __attribute__((visibility("default")))

/// Enclose declarations of the host's functions: C linkage, without the compiler's warnings about references,
/// which C does not have, and about a `const` without effect.
#if defined(__clang__)
#define FMX_BEGIN_CALLS                                                                                      \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wreturn-type-c-linkage\"")         \
        _Pragma("clang diagnostic ignored \"-Wignored-qualifiers\"") extern "C" {
#define FMX_END_CALLS                                                                                        \
    }                                                                                                        \
    _Pragma("clang diagnostic pop")
#elif !defined(__OBJC__)
#define FMX_BEGIN_CALLS                                                                                      \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wignored-qualifiers\"") extern "C" {
#define FMX_END_CALLS                                                                                        \
    }                                                                                                        \
    _Pragma("GCC diagnostic pop")
#else // GCC's Objective-C++ makes no such remarks, and knows no such option
#define FMX_BEGIN_CALLS extern "C" {
#define FMX_END_CALLS }
#endif

namespace fmx {

/// The exception block, in which the host's functions report failures; their last argument.
struct _fmxcpt {
    int32 version;
    int32 code;

    _fmxcpt() : version(1), code(0) {}

    /// Throws the reported exception: `std::bad_alloc` for code 1, `std::exception` for code 2.
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

/// Makes a call with a new exception block, and throws the exception that it reports.
template <class Result>
struct CheckedCall {
    template <class Function, class... Arguments>
    static Result of(Function function, Arguments&&... arguments) {
        _fmxcpt block;
        Result result = function(static_cast<Arguments&&>(arguments)..., block);
        block.Check();
        return result;
    }
};
template <>
struct CheckedCall<void> {
    template <class Function, class... Arguments>
    static void of(Function function, Arguments&&... arguments) {
        _fmxcpt block;
        function(static_cast<Arguments&&>(arguments)..., block);
        block.Check();
    }
};
template <class Result, class... Parameters, class... Arguments>
inline Result Call(Result (*function)(Parameters...), Arguments&&... arguments) {
    return CheckedCall<Result>::of(function, static_cast<Arguments&&>(arguments)...);
}

#if defined(_LIBCPP_VERSION) && __cplusplus >= 201703L && !defined(_LIBCPP_ENABLE_CXX17_REMOVED_AUTO_PTR)
template <class Object>
using OlderPointer = std::unique_ptr<Object>;
#else
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
template <class Object>
using OlderPointer = std::auto_ptr<Object>;
#pragma GCC diagnostic pop
#endif

} // namespace fmx

/// The common declarations of all opaque classes: a plug-in cannot make or copy their objects itself, and
/// `delete` gives an object back to the host.
#define FMX_OPAQUE_CLASS(name)                                                                               \
    name() = delete;                                                                                         \
    name(const name&) = delete;                                                                              \
    static void operator delete(void* self) {                                                                \
        _fmxcpt block;                                                                                       \
        FM_##name##_Delete(self, block);                                                                     \
    }

// NOLINTBEGIN(bugprone-macro-parentheses): the names of classes
/// The owning holders of a class, made from a template `<name>Holder` of their base: `<name>UniquePtr`, and
/// the older `<name>AutoPtr`, whose copies take over the object where the C++ library still has
/// `std::auto_ptr`.
#define FMX_HOLDERS(name)                                                                                    \
    class name##UniquePtr : public name##Holder<std::unique_ptr<name>> {                                     \
      public:                                                                                                \
        using name##Holder<std::unique_ptr<name>>::name##Holder;                                             \
    };                                                                                                       \
    class name##AutoPtr : public name##Holder<OlderPointer<name>> {                                          \
      public:                                                                                                \
        using name##Holder<OlderPointer<name>>::name##Holder;                                                \
    };
// NOLINTEND(bugprone-macro-parentheses)
