#pragma once

// Stops what would go on for ever: a calculation can be written that does. The host's users have Control-C for it.

#include <atomic>
#include <chrono>

namespace fuzz {

// Sets a flag once the process has used that much processor time, as Control-C would, unless it is destroyed before.
// One at a time.
class StopAfter {
  public:
    StopAfter(std::atomic<bool>& flag, std::chrono::milliseconds time);
    ~StopAfter();
    StopAfter(const StopAfter&) = delete;
    StopAfter& operator=(const StopAfter&) = delete;
};

} // namespace fuzz
