#pragma once

namespace koru {

// A value that is made before the program starts and never destroyed, for the state that lasts as long as the
// process: at exit its objects may outlive the libraries that their release would call.
template <typename T>
union Immortal {
    T value;
    constexpr Immortal() : value() {}
    ~Immortal() {}
};

} // namespace koru
