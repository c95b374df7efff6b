#pragma once

namespace host {

// Counts one level deeper for as long as it lives. Who goes deeper compares the count with a limit of its
// own.
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
