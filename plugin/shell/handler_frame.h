#pragma once

#import "plugin/shell/error_state.h"
#include "plugin/support/host_interface.h"
#import "plugin/support/host_text.h"
#include <memory>

namespace koru {

// What a handler's work has come to: a text (nil is the empty one), or a value of another kind that the work
// has stored in the result by itself.
class Answer {
  public:
    Answer() = default;
    Answer(NSString* text) : text_(text) {} // so that the work can return a string as it is

    // Says that the work has written the result: the frame leaves it alone, even when the call failed.
    [[nodiscard]] static Answer written() {
        Answer answer;
        answer.written_ = true;
        return answer;
    }

    [[nodiscard]] NSString* text() const { return text_; }
    [[nodiscard]] bool isWritten() const { return written_; }

  private:
    NSString* text_ = nil;
    bool written_ = false;
};

// In what the handlers' frames differ.
struct FrameRules {
    bool checksCount;         // refuses a number of arguments outside the function's range
    bool clearsError;         // begins by forgetting the last call's error
    bool clearsExceptionText; // begins by releasing the last exception's text
    bool marksErrors;         // makes the result "!!ERROR!!" when the call has failed
};

// Every function but the next two.
inline constexpr FrameRules kUsualFrame{true, true, true, true};

// The version function cannot fail, takes any number of arguments, and leaves the exception's text.
inline constexpr FrameRules kVersionFrame{false, true, false, true};

// The last-error function tells what the call before it has left, and refuses a wrong number of arguments
// in its own way.
inline constexpr FrameRules kLastErrorFrame{false, false, false, false};

// Runs the frame itself; see runHandler.
fmx::errcode runFrame(short function, const fmx::DataVect& arguments, fmx::Data& result,
                      const FrameRules& rules, Answer (*fetchAnswer)(void* work), void* work);

// Runs a handler's work, a callable that returns an Answer, and writes the result: the one way from the host
// into the plug-in's functions. Around the work stand an autorelease pool and the guard that turns a platform
// exception into the call's error; a std::bad_alloc or std::exception (a failure of the host) passes, with
// everything temporary released. Writing the result is not guarded: a result that is no string leaves the
// handler as a platform exception. Returns the host's error code, which is always 0: failures show in the
// result and through the last-error function.
template <typename Work>
fmx::errcode runHandler(short function, const fmx::DataVect& arguments, fmx::Data& result, Work work,
                        const FrameRules& rules = kUsualFrame) {
    return runFrame(
        function, arguments, result, rules,
        [](void* callable) -> Answer { return (*static_cast<Work*>(callable))(); }, std::addressof(work));
}

} // namespace koru
