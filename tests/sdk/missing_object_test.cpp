// Methods called without an object: they set a code in the exception block, and do nothing else.
#include "tests/sdk/arguments.h"

#include <gtest/gtest.h>
#include <string_view>
#include <type_traits>

namespace {

using namespace sdk_test;

// The code that a method reports without its object; that of a method when the function is none.
constexpr int32 kFailed = 2;
template <class Signature>
struct WithoutObject {
    template <class Function>
    static int32 code(Function /*function*/) {
        return kFailed;
    }
};
template <class Object, class... Arguments>
    requires std::is_same_v<Object, S> || std::is_same_v<Object, C>
struct WithoutObject<void(Object, Arguments...)> {
    template <class Function>
    static int32 code(Function function) {
        _fmxcpt block;
        function(nullptr, Argument<Arguments>().get()..., block);
        return block.code;
    }
};

TEST(MissingObjectTest, IsReportedByEveryMethod) {
#define CALL(since, until, type, name, result, arguments)                                                    \
    EXPECT_EQ(WithoutObject<void arguments>::code(&FM_##type##_##name),                                      \
              std::string_view(#name) == "Delete" ? 0 : kFailed)                                             \
        << #type "_" #name;
#define CALL_WITHOUT_BLOCK(since, until, type, name, result, arguments)
#include "tests/sdk/calls.def"
}

} // namespace
