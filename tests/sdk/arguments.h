#pragma once

// An argument of each type that functions of the interface take, for tests that call them all by way of calls.def.

#include "host/wrapper/interface.h"

#include <type_traits>

namespace sdk_test {

using namespace fmx;
using S = void*;
using C = const void*;

// An argument of each type, made anew for each call.
template <class Type>
struct Argument {
    Type get() { return Type{}; }
};
template <class Type>
struct Argument<Type&> {
    std::remove_const_t<Type> value{};
    Type& get() { return value; }
};
#define ARGUMENT(name)                                                                                       \
    template <>                                                                                              \
    struct Argument<name&> {                                                                                 \
        name##UniquePtr object;                                                                              \
        name& get() {                                                                                        \
            return *object;                                                                                  \
        }                                                                                                    \
    };                                                                                                       \
    template <>                                                                                              \
    struct Argument<const name&> : Argument<name&> {};
ARGUMENT(QuadChar)
ARGUMENT(Locale)
ARGUMENT(Text)
ARGUMENT(FixPt)
ARGUMENT(DateTime)
ARGUMENT(BinaryData)
ARGUMENT(Data)
ARGUMENT(DataVect)
ARGUMENT(RowVect)
ARGUMENT(ExprEnv)
ARGUMENT(CharacterStyle)
ARGUMENT(Color)
#undef ARGUMENT

} // namespace sdk_test
