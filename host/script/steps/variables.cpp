// Steps that set variables.
#include "host/script/step_context.h"
#include "host/script/steps/categories.h"
#include "host/script/url_step.h"

namespace host {

namespace {

void setVariable(StepContext& step) {
    Value value = step.value(1);
    step.trace(value);
    step.assign(0, std::move(value));
}

void insertText(StepContext& step) {
    enum : size_t { kSelect, kTarget, kText };
    Value value = step.value(kText);
    step.trace(value);
    step.assign(kTarget, std::move(value));
}

void setSessionIdentifier(StepContext& step) {
    step.session().environment().sessionIdentifier = step.text(0);
}

constexpr StepRow kSteps[] = {
    {u"Set Variable [ $variable ; Value: calculation ]", setVariable, "Gives a value to a variable.",
     StepForm::quiet},
    {u"Insert Text [ {Select} ; Target: $variable ; calculation ]", insertText,
     "Puts a text into a variable."},
    {u"Insert Calculated Result [ {Select} ; Target: $variable ; calculation ]", insertText,
     "Puts the result of a calculation into a variable."},
    {u"Insert from URL [ {Select} ; {With dialog: On/Off} ; Target: $variable ; calculation ; "
     u"{Verify SSL Certificates} ; {cURL options: calculation} ]",
     insertFromUrl,
     "Puts what a URL names into a variable; other URLs than those of files need --allow-network."},
    {u"Set Session Identifier [ calculation ]", setSessionIdentifier, "Sets Get ( SessionIdentifier )."},
};

} // namespace

std::span<const StepRow> variableSteps() {
    return kSteps;
}

} // namespace host
