#pragma once

// Failures of steps, with the codes that Get ( LastError ) then returns, which are FileMaker's.

#include <optional>
#include <stdexcept>
#include <string>

namespace host {

enum StepCode : int {
    kUserCancelled = 1,
    kCommandUnavailable = 3,
    kFileMissing = 100,
    kScriptMissing = 104,
    kDataMissing = 10,
    kFileUnreadable = 800,
    kNetworkUnavailable = 1631,
};

// Thrown by a step that failed. With Set Error Capture [ On ] the script continues and can ask for the code;
// otherwise the failure ends it.
class StepFailure : public std::runtime_error {
  public:
    // [offset] is the place in the script that the message is about; without one, that of the step.
    StepFailure(int code, const std::string& message, std::optional<size_t> offset = std::nullopt)
        : std::runtime_error(message), code_(code), offset_(offset) {}

    int code() const { return code_; }
    std::optional<size_t> offset() const { return offset_; }

  private:
    int code_;
    std::optional<size_t> offset_;
};

} // namespace host
