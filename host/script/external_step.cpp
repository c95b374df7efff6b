#include "host/script/external_step.h"

namespace host {

namespace {

std::u16string parameterForm(const StepParameter& parameter) {
    switch (parameter.kind) {
    case StepParameter::Kind::calculation:
        return u"calculation";
    case StepParameter::Kind::flag:
        return u"On/Off";
    case StepParameter::Kind::target:
        return u"$variable";
    case StepParameter::Kind::choice:
        break;
    }
    std::u16string words;
    for (const StepParameter::Choice& choice : parameter.choices) {
        words += (words.empty() ? u"" : u"/") + choice.word;
    }
    return words;
}

} // namespace

std::u16string stepPrototype(const ExternalStep& step) {
    std::u16string result = step.name();
    const char16_t* separator = u" [ ";
    for (const StepParameter& parameter : step.parameters()) {
        result += separator;
        result += parameter.label.empty() ? u"" : parameter.label + u": ";
        result += parameterForm(parameter);
        separator = u" ; ";
    }
    return step.parameters().empty() ? result : result + u" ]";
}

} // namespace host
