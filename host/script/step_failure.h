#pragma once

// How a step fails, and the codes that Get ( LastError ) answers then: FileMaker's own numbers.

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

// A step that could not do its work. With Set Error Capture [ On ] the script goes on and asks for the code;
// else the failure ends it.
class StepFailure : public std::runtime_error {
  public:
    // [offset] is the place in the script that the message is about; the step itself when there is none.
    StepFailure(int code, const std::string& message, std::optional<size_t> offset = std::nullopt)
        : std::runtime_error(message), code_(code), offset_(offset) {}

    int code() const { return code_; }
    std::optional<size_t> offset() const { return offset_; }

  private:
    int code_;
    std::optional<size_t> offset_;
};

} // namespace host
