// The C functions of the interface: each is declared as in the table, and the library exports it.
#include "host/wrapper/interface.h"

#include <gtest/gtest.h>
#include <type_traits>

// The table has them as they are, and so have the types that are made of them here.
#pragma GCC diagnostic ignored "-Wignored-qualifiers"

namespace {

using namespace fmx;
using S = void*;
using C = const void*;

// A function of the interface: a row of the table, with the exception block behind its arguments, never
// throwing.
template <class Function>
struct Row;
template <class Result, class... Arguments>
struct Row<Result(Arguments...)> {
    using WithBlock = Result (*)(Arguments..., _fmxcpt&) noexcept;
    using WithoutBlock = Result (*)(Arguments...) noexcept;
};

#define CALL(since, until, object, name, result, arguments)                                                  \
    static_assert(std::is_same_v<decltype(&FM_##object##_##name), Row<result arguments>::WithBlock>);
#define CALL_WITHOUT_BLOCK(since, until, object, name, result, arguments)                                    \
    static_assert(std::is_same_v<decltype(&FM_##object##_##name), Row<result arguments>::WithoutBlock>);
#include "tests/sdk/calls.def"
#undef CALL
#undef CALL_WITHOUT_BLOCK

// A row that is lost takes its check with it.
#define CALL(since, until, object, name, result, arguments) +1
#define CALL_WITHOUT_BLOCK CALL
constexpr int kRows = 0
#include "tests/sdk/calls.def"
    ;
#undef CALL
#undef CALL_WITHOUT_BLOCK
static_assert(kRows == 251);

// Each is taken from the library when this program starts: a missing one keeps it from being linked.
TEST(CallsTest, LibraryHasEach) {
#define CALL(since, until, object, name, result, arguments)                                                  \
    EXPECT_NE(reinterpret_cast<const volatile void*>(&FM_##object##_##name), nullptr);
#define CALL_WITHOUT_BLOCK CALL
#include "tests/sdk/calls.def"
}

} // namespace
