// Functions of the interface while memory runs out: each allocation that a function makes fails once.
#include "tests/sdk/arguments.h"
#include "tests/support/failing_memory.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

using namespace sdk_test;

constexpr fmx::int32 kOutOfMemory = 1;

template <class Object, class Signature>
struct Starved {
    template <class Function>
    static int failures(Function /*function*/) {
        return 0; // no method
    }
};
template <class Object, class Receiver, class... Arguments>
    requires std::is_same_v<Receiver, S> || std::is_same_v<Receiver, C>
struct Starved<Object, void(Receiver, Arguments...)> {
    template <class Function>
    static fmx::int32 code(Function function, long allocations, bool& failed) {
        Argument<Object&> object;
        std::tuple<Argument<Arguments>...> arguments;
        fmx::_fmxcpt block;
        std::apply(
            [&](auto&... each) {
                Object& self = object.get();
                support::failAllocation(allocations);
                static_cast<void>(function(&self, each.get()..., block));
            },
            arguments);
        failed = support::allocationFailed();
        return block.code;
    }
    // Returns how many allocations the function makes; checks what it reports when each of them fails.
    template <class Function>
    static int failures(Function function) {
        bool failed = false;
        const fmx::int32 usual = code(function, 1'000'000, failed);
        for (int allocations = 0; allocations < 10'000; ++allocations) {
            const fmx::int32 reported = code(function, allocations, failed);
            if (!failed) {
                EXPECT_EQ(reported, usual);
                return allocations;
            }
            // Where a library does without the memory, the function answers as usual.
            EXPECT_TRUE(reported == kOutOfMemory || reported == usual) << reported << " at " << allocations;
        }
        ADD_FAILURE() << "it allocates without an end";
        return 0;
    }
};

TEST(MemoryTest, ThatRunsOutIsReportedByEveryMethod) {
    int failures = 0;
#define CALL(since, until, type, name, result, arguments)                                                    \
    if (std::string_view(#name) != "Delete") {                                                               \
        SCOPED_TRACE(#type "_" #name);                                                                       \
        failures += Starved<type, void arguments>::failures(&FM_##type##_##name);                            \
    }
#define CALL_WITHOUT_BLOCK(since, until, type, name, result, arguments)
#include "tests/sdk/calls.def"
    EXPECT_GT(failures, 50);
}

} // namespace
