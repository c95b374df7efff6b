// Steps that control what runs next, and the handling of errors.
#include "host/script/error_log.h"
#include "host/script/step_context.h"
#include "host/script/steps/categories.h"

#include <algorithm>

namespace host {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr double kLongestPause = 1e9; // seconds, some thirty years

void performScript(StepContext& step) {
    enum : size_t { kSpecified, kScript, kParameter };
    const auto file = step.script(kScript);
    Value result = file ? step.perform(*file, step.value(kParameter)) : Value();
    step.session().frame().scriptResult = std::move(result);
    step.session().setLastError(file ? 0 : kScriptMissing);
}

void pauseScript(StepContext& step) {
    constexpr size_t kDuration = 1; // the parameter after Indefinitely
    const Value duration = step.value(kDuration);
    step.trace(duration);
    const double seconds =
        step.isGiven(kDuration) ? duration.asNumber().value_or(0).toDouble() : kLongestPause;
    step.pause(Seconds(std::clamp(seconds, 0.0, kLongestPause)));
}

void exitScript(StepContext& step) {
    Value result = step.value(0);
    if (step.isGiven(0)) {
        step.trace(result);
    }
    step.exit(std::move(result));
}

void haltScript(StepContext& /*step*/) {
    throw ScriptsHalted();
}

void allowUserAbort(StepContext& step) {
    step.session().environment().allowUserAbort = step.number(0) != 0;
}

void setErrorCapture(StepContext& step) {
    step.session().environment().errorCapture = step.number(0) != 0;
}

void setErrorLogging(StepContext& step) {
    if (step.number(0) != 0) {
        step.errorLog().turnOn(step.text(1));
    } else {
        step.errorLog().turnOff();
    }
}

void setAnimation(StepContext& step) {
    step.session().environment().animation = step.number(0) != 0;
}

void setRevertTransaction(StepContext& step) {
    step.session().environment().revertTransactionOnError = step.number(0) != 0;
}

// Removes the timer when there is no script, or no interval or one of 0.
void installTimer(StepContext& step) {
    enum : size_t { kScript, kParameter, kInterval };
    const double seconds = step.value(kInterval).asNumber().value_or(0).toDouble();
    step.removeTimer();
    if (!step.isGiven(kScript) || seconds <= 0) {
        return;
    }
    const auto file = step.script(kScript);
    if (!file) {
        step.fail(kScriptMissing, "there is no such script", kScript);
    }
    step.installTimer(*file, step.value(kParameter), Seconds(std::min(seconds, kLongestPause)));
}

constexpr StepRow kSteps[] = {
    {u"If [ calculation ]", StepForm::ifStep, "Runs the steps up to Else If, Else or End If if it is true."},
    {u"Else If [ calculation ]", StepForm::elseIf, "Begins the branch for another condition."},
    {u"Else", StepForm::elseStep, "Begins the branch for when no condition is true."},
    {u"End If", StepForm::endIf, "Ends an If."},
    {u"Loop [ {Flush: Always/Minimum/Defer} ]", StepForm::loop,
     "Runs the steps up to End Loop again and again."},
    {u"Exit Loop If [ calculation ]", StepForm::exitLoopIf, "Leaves the loop if it is true."},
    {u"End Loop", StepForm::endLoop, "Ends a Loop."},
    {u"Perform Script [ {Specified: From list/By name} ; \"script\" ; {Parameter: calculation} ]",
     performScript, "Runs another script; Get ( ScriptResult ) is what it answers.", StepForm::quiet},
    {u"Exit Script [ {Result|Text Result: calculation} ]", exitScript, "Ends the script with a result.",
     StepForm::quiet},
    {u"Halt Script", haltScript, "Ends the script and all that perform it.", StepForm::quiet},
    {u"Exit Application", haltScript, "Ends the script and all that perform it; the host goes on.",
     StepForm::quiet},
    {u"Pause/Resume Script [ {Indefinitely} ; {Duration (seconds): calculation} ]", pauseScript,
     "Leaves the host to plug-ins and timers for that long."},
    {u"Install OnTimer Script [ {\"script\"} ; {Parameter: calculation} ; {Interval: calculation} ]",
     installTimer,
     "Runs a script every so many seconds while no other one works; without one, or every 0 seconds: no "
     "more."},
    {u"Allow User Abort [ On/Off ]", allowUserAbort,
     "Sets Get ( AllowAbortState ); Ctrl-C ends the script all the same."},
    {u"Set Error Capture [ On/Off ]", setErrorCapture,
     "Whether the script asks for errors itself; else the first one ends it."},
    {u"Set Error Logging [ On/Off ; {Custom debug info: calculation} ]", setErrorLogging,
     "Writes steps that fail into ScriptErrors.log in the user's Documents."},
    {u"Set Layout Object Animation [ On/Off ]", setAnimation, "Sets Get ( ScriptAnimationState )."},
    {u"Set Revert Transaction on Error [ On/Off ]", setRevertTransaction,
     "Sets Get ( RevertTransactionOnErrorState )."},
};

} // namespace

std::span<const StepRow> controlSteps() {
    return kSteps;
}

} // namespace host
