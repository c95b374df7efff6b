#pragma once

#include <cmath>
#include <limits>

namespace koru {

// Returns a floating-point value without its fraction; the nearest whole number there is when it is beyond
// them, 0 for no number.
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
