#pragma once

#include <cmath>
#include <limits>

namespace koru {

// Returns the value without its fraction; the nearest limit of long long when it is beyond that, 0 for NaN.
[[nodiscard]] inline long long truncated(double value) {
    constexpr auto kLimits = std::numeric_limits<long long>();
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= static_cast<double>(kLimits.max())) {
        return kLimits.max();
    }
    if (value <= static_cast<double>(kLimits.min())) {
        return kLimits.min();
    }
    return static_cast<long long>(value);
}

} // namespace koru
