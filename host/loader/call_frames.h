#pragma once

// The host objects that a call needs, kept for the next call: making them anew would cost more than the call
// itself.

#include "host/loader/conversion.h"

#include "host/wrapper/interface.h"

#include <memory>
#include <vector>

namespace host {

struct CallFrame {
    fmx::ExprEnvUniquePtr environment;
    fmx::DataVectUniquePtr arguments;
    fmx::DataUniquePtr argument; // what is put into [arguments] next
    fmx::DataUniquePtr result;
    ConversionTools tools;

    // Lets go of the values of a call.
    void release() {
        arguments->Clear();
        argument->Clear(fmx::Data::kDTText);
        result->Clear(fmx::Data::kDTText);
    }
};

// Calls may be inside each other: each takes a frame of its own. One thread uses it.
class CallFrames {
  public:
    // A frame for as long as it lives; empty at first.
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
        // Never allocates: the constructor has made room.
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
