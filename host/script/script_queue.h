#pragma once

// Scripts that are waiting to be run.

#include "host/values/value.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <queue>

namespace host {

struct ScriptRequest {
    std::filesystem::path file;
    Value parameter;
};

// The queue of scripts that plug-ins have started. Thread-safe.
class ScriptQueue {
  public:
    using Request = ScriptRequest;

    void push(Request request) {
        const std::lock_guard lock(mutex_);
        waiting_.push(std::move(request));
    }

    std::optional<Request> pop() {
        const std::lock_guard lock(mutex_);
        if (waiting_.empty()) {
            return std::nullopt;
        }
        Request next = std::move(waiting_.front());
        waiting_.pop();
        return next;
    }

  private:
    std::mutex mutex_;
    std::queue<Request> waiting_;
};

} // namespace host
