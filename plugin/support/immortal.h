#pragma once

namespace koru {

// A value that is constructed at compile time and never destroyed, for state that lasts as long as the
// process. Destroying it at exit would call libraries that may already be unloaded.
template <typename T>
union Immortal {
    T value;
    constexpr Immortal() : value() {}
    ~Immortal() {}
};

} // namespace koru
