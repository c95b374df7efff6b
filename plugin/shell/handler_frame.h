#pragma once

#import "plugin/shell/error_state.h"
#include "plugin/support/host_interface.h"
#import "plugin/support/host_text.h"
#include <memory>

namespace koru {

// The result of a handler's work: a text (nil is the empty text), or a value of another kind that the work
// has stored in the host's result itself.
class Answer {
  public:
    Answer() = default;
    Answer(NSString* text) : text_(text) {} // so that the work can return a string as it is

    // Returns the answer of work that has stored the result itself; the frame then leaves it alone, even when
    // the call failed.
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

// The ways in which the frames of handlers differ.
struct FrameRules {
    bool checksCount;         // refuses a number of arguments outside the function's range
    bool clearsError;         // begins by clearing the last call's error
    bool clearsExceptionText; // begins by releasing the last exception's text
    bool marksErrors;         // makes the result "!!ERROR!!" when the call has failed
};

// Every function but the next two.
inline constexpr FrameRules kUsualFrame{true, true, true, true};

// The version function cannot fail, takes any number of arguments, and leaves the exception's text.
inline constexpr FrameRules kVersionFrame{false, true, false, true};

// The last-error function reports the error of the call before it, and handles a wrong number of arguments
// itself.
inline constexpr FrameRules kLastErrorFrame{false, false, false, false};

// Runs the frame itself; see runHandler.
fmx::errcode runFrame(short function, const fmx::DataVect& arguments, fmx::Data& result,
                      const FrameRules& rules, Answer (*fetchAnswer)(void* work), void* work);

// Runs a handler's work, a callable that returns an Answer, and writes the result. Every call from the host
// into the plug-in's functions passes through here. The work runs inside an autorelease pool and a guard that
// turns an NSException into the call's error. A std::bad_alloc or std::exception (a failure of the host)
// passes through, and everything temporary is released. Writing the result is not guarded: an answer that is
// no NSString leaves the handler as an NSException, and so does one that is raised while another is described. Always returns 0 to the host: failures show in the result
// and through the last-error function.
template <typename Work>
fmx::errcode runHandler(short function, const fmx::DataVect& arguments, fmx::Data& result, Work work,
                        const FrameRules& rules = kUsualFrame) {
    return runFrame(
        function, arguments, result, rules,
        [](void* callable) -> Answer { return (*static_cast<Work*>(callable))(); }, std::addressof(work));
}

} // namespace koru
