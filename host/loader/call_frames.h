#pragma once

// The host objects that a call into a plug-in needs. They are reused for the next call, as making them would
// take longer than the call itself.

#include "host/wrapper/interface.h"

#include <memory>
#include <vector>

namespace host {

// The objects of one call.
struct CallFrame {
    fmx::ExprEnvUniquePtr environment;
    fmx::DataVectUniquePtr arguments;
    fmx::DataUniquePtr result;

    // Clears the values of a call.
    void release() {
        arguments->Clear();
        result->Clear(fmx::Data::kDTText);
    }
};

// The frames of a host. Nested calls each take a frame of their own. Not thread-safe.
class CallFrames {
  public:
    // Takes a frame, whose values are cleared, and gives it back when destroyed.
    class Lease {
      public:
        explicit Lease(CallFrames& frames) : frames_(frames) {
            if (frames_.free_.empty()) {
                frame_ = std::make_unique<CallFrame>();
                frames_.free_.reserve(++frames_.made_);
            } else {
                frame_ = std::move(frames_.free_.back());
                frames_.free_.pop_back();
            }
        }
        // Does not allocate: the constructor has reserved the memory.
        ~Lease() { frames_.free_.push_back(std::move(frame_)); }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

        CallFrame& operator*() const { return *frame_; }
        CallFrame* operator->() const { return frame_.get(); }

      private:
        CallFrames& frames_;
        std::unique_ptr<CallFrame> frame_;
    };

  private:
    std::vector<std::unique_ptr<CallFrame>> free_;
    size_t made_ = 0;
};

} // namespace host
