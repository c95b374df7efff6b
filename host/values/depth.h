#pragma once

namespace host {

// Increments a count of nested calls for as long as it lives. The caller compares the count with its limit.
class DepthGuard {
  public:
    explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

  private:
    int& depth_;
};

} // namespace host
