#include "host/script/step_parameter.h"

namespace host {

namespace {

using Kind = StepParameter::Kind;

std::u16string choiceWords(const StepParameter& parameter) {
    std::u16string words;
    for (const StepParameter::Choice& choice : parameter.choices) {
        words += (words.empty() ? u"" : u"/") + choice.word;
    }
    return words;
}

std::u16string parameterForm(const StepParameter& parameter) {
    switch (parameter.kind) {
    case Kind::calculation:
        return u"calculation";
    case Kind::flag:
        return u"On/Off";
    case Kind::target:
        return u"$variable";
    case Kind::script:
        return u"\"script\"";
    case Kind::choice:
        return choiceWords(parameter);
    case Kind::word:
        break;
    }
    return {};
}

// Removes the text before the first [mark], and returns it without white space around it.
std::u16string cut(std::u16string_view& text, char16_t mark) {
    const size_t end = text.find(mark);
    std::u16string part = normalName(text.substr(0, end));
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return part;
}

Kind kindOf(std::u16string_view form) {
    return form == u"calculation"                    ? Kind::calculation
           : form == u"$variable"                    ? Kind::target
           : form == u"On/Off"                       ? Kind::flag
           : form == u"\"script\""                   ? Kind::script
           : form.find(u'/') != std::u16string::npos ? Kind::choice
                                                     : Kind::word;
}

StepParameter readParameter(std::u16string text) {
    StepParameter parameter;
    parameter.isRequired = !text.starts_with(u'{');
    if (!parameter.isRequired) {
        text = normalName(std::u16string_view(text).substr(1, text.size() - 2));
    }
    std::u16string_view rest = text;
    if (text.find(u':') != text.npos) {
        parameter.label = cut(rest, u':');
        const size_t bar = parameter.label.find(u'|');
        if (bar != parameter.label.npos) {
            parameter.olderLabel = parameter.label.substr(0, bar);
            parameter.label.erase(0, bar + 1);
        }
    }
    const std::u16string form = normalName(rest);
    parameter.kind = kindOf(form);
    parameter.needsLabel = !parameter.label.empty() && parameter.kind != Kind::target;
    if (parameter.kind == Kind::word) {
        parameter.label = form;
    } else if (parameter.kind == Kind::choice) {
        for (rest = form; !rest.empty();) {
            const auto number = static_cast<int>(parameter.choices.size());
            parameter.choices.push_back({cut(rest, u'/'), number});
        }
    }
    return parameter;
}

} // namespace

std::u16string_view prototypeName(std::u16string_view prototype) {
    return prototype.substr(0, prototype.find(u" ["));
}

std::vector<StepParameter> prototypeParameters(std::u16string_view prototype) {
    std::vector<StepParameter> result;
    const size_t name = prototypeName(prototype).size();
    if (name < prototype.size()) {
        std::u16string_view inside = prototype.substr(name + 2, prototype.rfind(u']') - name - 2);
        while (!inside.empty()) {
            result.push_back(readParameter(cut(inside, u';')));
            result.back().index = result.size() - 1;
        }
    }
    return result;
}

std::u16string stepPrototype(std::u16string_view name, const std::vector<StepParameter>& parameters) {
    std::u16string result(name);
    const char16_t* separator = u" [ ";
    for (const StepParameter& parameter : parameters) {
        const bool isLabelAlone = parameter.label.empty() || parameter.kind == Kind::word;
        result += separator;
        result += isLabelAlone ? parameter.label : parameter.label + u": ";
        result += parameterForm(parameter);
        separator = u" ; ";
    }
    return parameters.empty() ? result : result + u" ]";
}

bool isSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\u00A0' || c == u'\uFEFF';
}

std::u16string normalName(std::u16string_view text) {
    std::u16string result;
    for (const char16_t c : text) {
        if (!isSpace(c)) {
            result += c;
        } else if (!result.empty() && result.back() != u' ') {
            result += u' ';
        }
    }
    if (!result.empty() && result.back() == u' ') {
        result.pop_back();
    }
    return result;
}

} // namespace host
