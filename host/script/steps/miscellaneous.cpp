// Dialogs and sounds, and steps that do nothing as there is no window.
#include "host/script/step_context.h"
#include "host/script/steps/categories.h"

namespace host {

namespace {

// There is nobody to answer: chooses the first button, and leaves the inputs as they are.
void showCustomDialog(StepContext& step) {
    const Value title = step.value(0);
    step.showDialog(title, step.value(1));
    step.session().environment().lastMessageChoice = 1;
}

void beep(StepContext& step) {
    step.beep();
}

constexpr StepRow kSteps[] = {
    {u"Show Custom Dialog [ calculation ; {calculation} ; {$variable} ; {$variable} ; {$variable} ]",
     showCustomDialog, "Prints title and message; the answer is the first button, inputs stay as they are."},
    {u"Beep", beep, "Sounds the bell of a terminal."},
    {u"Flush Cache to Disk", StepForm::inert, "Does nothing: there is no cache."},
    {u"Freeze Window", StepForm::inert, "Does nothing: there are no windows."},
    {u"Refresh Window [ {Flush cached join results} ; {Flush cached external data} ]", StepForm::inert,
     "Does nothing: there are no windows."},
    {u"Refresh Object [ {Object Name: calculation} ; {Repetition: calculation} ]", StepForm::inert,
     "Does nothing: there are no layouts."},
    {u"Refresh Portal [ {Object Name: calculation} ]", StepForm::inert,
     "Does nothing: there are no layouts."},
    {u"Speak [ calculation ]", StepForm::unavailable, "Error 3: there is no voice."},
    {u"Open URL [ {With dialog: On/Off} ; calculation ]", StepForm::unavailable,
     "Error 3: there is no desktop to open it with."},
    {u"Perform AppleScript [ calculation ]", StepForm::unavailable, "Error 3: there is no AppleScript."},
};

} // namespace

std::span<const StepRow> miscellaneousSteps() {
    return kSteps;
}

} // namespace host
