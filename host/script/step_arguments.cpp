#include "host/script/step_arguments.h"

#include "host/calc/registry.h"
#include "host/calc/suggest.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

using Kind = StepParameter::Kind;

class ArgumentReader {
  public:
    ArgumentReader(std::u16string_view step, const std::vector<StepParameter>& parameters, Parser& in)
        : step_(step), parameters_(parameters), in_(in), arguments_(parameters.size()) {}

    StepArguments read() {
        if (!isAtEnd()) {
            do {
                readParameter();
            } while (std::any_of(arguments_.begin(), arguments_.end(),
                                 [](const StepArgument& argument) { return !argument.isGiven; }) &&
                     in_.accept(TokenKind::semicolon));
        }
        for (size_t i = 0; i < parameters_.size(); ++i) {
            if (parameters_[i].isRequired && !arguments_[i].isGiven) {
                failMissing(i);
            }
        }
        return std::move(arguments_);
    }

  private:
    bool isAtEnd() const { return in_.current().kind == TokenKind::rightBracket; }

    void readParameter() {
        const size_t begin = in_.current().begin;
        const size_t place = word() ? place_ : labelled() ? place_ : next();
        const StepParameter& parameter = parameters_[place];
        StepArgument& argument = arguments_[place];
        if (argument.isGiven) {
            in_.fail(begin, CalcCode::operatorOrFunctionExpected,
                     toUtf8(parameter.label) + " is given twice");
        }
        const bool isLeftOut = isAtEnd() || in_.current().kind == TokenKind::semicolon;
        if (parameter.kind == Kind::calculation && !parameter.isRequired && parameter.needsLabel &&
            isLeftOut) {
            return; // "Parameter:" without a value
        }
        argument.isGiven = true;
        switch (parameter.kind) {
        case Kind::calculation:
            argument.value = isNewValue()
                                 ? in_.calculationFor(std::get<Variable>(arguments_[0].value->root.form))
                                 : in_.calculation();
            return;
        case Kind::flag:
            argument.number = flag() ? 1 : 0;
            return;
        case Kind::choice:
            argument.number = choice(parameter);
            return;
        case Kind::target:
            argument.value = in_.variableCalculation();
            return;
        case Kind::script:
            return script(argument);
        case Kind::word:
            return;
        }
    }

    // Returns the index of the parameter for the next value without a label.
    size_t next() {
        const bool isVariable = in_.current().kind == TokenKind::variable;
        for (size_t i = 0; i < parameters_.size(); ++i) {
            const StepParameter& parameter = parameters_[i];
            const bool isPassedOver = arguments_[i].isGiven || parameter.needsLabel ||
                                      parameter.kind == Kind::word ||
                                      (parameter.kind == Kind::target && !parameter.isRequired &&
                                       parameter.needsLabel && !isVariable);
            if (!isPassedOver) {
                return i;
            }
        }
        std::string labels;
        for (size_t i = 0; i < parameters_.size(); ++i) {
            const StepParameter& parameter = parameters_[i];
            if (!arguments_[i].isGiven && !parameter.label.empty()) {
                labels += labels.empty() ? "" : " or ";
                labels += "\"" + toUtf8(parameter.label) + (parameter.kind == Kind::word ? "\"" : ":\"");
            }
        }
        in_.failExpected(labels.empty() ? "the \"]\" of " + toUtf8(step_) : labels, CalcCode::nameMissing);
    }

    // Returns the text from [begin] to the next character that is in [ends].
    std::u16string_view until(std::u16string_view ends, size_t begin, size_t& end) const {
        const std::u16string_view text = in_.source()->text();
        end = std::min(text.find_first_of(ends, begin), text.size());
        return text.substr(begin, end - begin);
    }

    // Takes an option that is only a label; returns whether there was one.
    bool word() {
        if (in_.current().kind != TokenKind::identifier) {
            return false;
        }
        size_t end = 0;
        const std::u16string key = foldName(normalName(until(u";]\r\n", in_.current().begin, end)));
        for (size_t i = 0; i < parameters_.size(); ++i) {
            if (parameters_[i].kind == Kind::word && foldName(parameters_[i].label) == key) {
                in_.continueAt(end);
                place_ = i;
                return true;
            }
        }
        return false;
    }

    // Takes a label and its colon; returns whether there was one. A calculation has no single colon outside
    // texts, so that any words before one are a label.
    bool labelled() {
        const std::u16string_view text = in_.source()->text();
        const size_t begin = in_.current().begin;
        size_t colon = 0;
        const std::u16string label = normalName(until(u":;[]\"\u201C\r\n", begin, colon));
        if (in_.current().kind != TokenKind::identifier || colon == text.size() || text[colon] != u':' ||
            text.substr(colon).starts_with(u"::")) {
            return false;
        }
        const std::u16string key = foldName(label);
        Suggestion nearest(label);
        for (size_t i = 0; i < parameters_.size(); ++i) {
            const StepParameter& known = parameters_[i];
            const bool hasLabel = !known.label.empty() && known.kind != Kind::word;
            if (hasLabel && (foldName(known.label) == key || foldName(known.olderLabel) == key)) {
                in_.continueAt(colon + 1);
                place_ = i;
                return true;
            }
            nearest.consider(known.label);
        }
        const std::string question = nearest.question();
        in_.fail(begin, CalcCode::nameMissing,
                 toUtf8(step_) + " has no parameter called " + toUtf8(label) +
                     (question.empty() ? ": " + toUtf8(stepPrototype(step_, parameters_)) : question));
    }

    // Whether the next calculation is the new value of the variable that is the first argument.
    bool isNewValue() const { return foldName(step_) == u"set variable" && arguments_[0].isGiven; }

    bool flag() {
        const bool isOn = in_.acceptWord(u"on");
        if (!isOn && !in_.acceptWord(u"off")) {
            in_.failExpected("On or Off", CalcCode::nameMissing);
        }
        return isOn;
    }

    // Takes one of a parameter's words, with or without quotes; returns its number.
    int choice(const StepParameter& parameter) {
        const Token& token = in_.current();
        const bool isQuoted = token.kind == TokenKind::text || token.kind == TokenKind::quoted;
        size_t end = token.end;
        const std::u16string word = isQuoted ? token.text : normalName(until(u";]\r\n", token.begin, end));
        std::string words;
        for (const StepParameter::Choice& known : parameter.choices) {
            if (foldName(known.word) == foldName(word)) {
                in_.continueAt(end);
                return known.value;
            }
            words += (words.empty() ? "" : ", ") + toUtf8(known.word);
        }
        in_.failExpected("one of " + words, CalcCode::nameMissing);
    }

    // Takes a script's name in curly quotes, or a calculation that gives it, optionally followed by: from
    // file: "name".
    void script(StepArgument& argument) {
        if (in_.current().kind == TokenKind::quoted) {
            argument.script = in_.current().text;
            in_.advance();
        } else {
            argument.value = in_.calculation();
        }
        if (!in_.acceptWord(u"from")) {
            return;
        }
        if (!in_.acceptWord(u"file")) {
            in_.failExpected("\"file\" after \"from\"", CalcCode::nameMissing);
        }
        in_.accept(TokenKind::colon);
        if (in_.current().kind != TokenKind::quoted && in_.current().kind != TokenKind::text) {
            in_.failExpected("the name of a file in quotes", CalcCode::nameMissing);
        }
        argument.file = in_.current().text;
        in_.advance();
    }

    [[noreturn]] void failMissing(size_t place) {
        if (!isAtEnd() && in_.current().kind != TokenKind::end) {
            in_.failExpected("an operator, \";\" or the \"]\" of " + toUtf8(step_),
                             CalcCode::operatorOrFunctionExpected);
        }
        const StepParameter& parameter = parameters_[place];
        switch (parameter.kind) {
        case Kind::calculation:
        case Kind::script:
            if (parameter.label.empty()) {
                in_.calculation(); // throws the usual error for a missing value
            }
            break;
        case Kind::target:
            in_.variableCalculation();
            break;
        default:
            break;
        }
        in_.failExpected(parameter.label.empty() ? toUtf8(stepPrototype(step_, parameters_))
                                                 : "\"" + toUtf8(parameter.label) + ":\"",
                         CalcCode::nameMissing);
    }

    std::u16string_view step_;
    const std::vector<StepParameter>& parameters_;
    Parser& in_;
    StepArguments arguments_;
    size_t place_ = 0; // the index of the parameter that word() or labelled() found
};

} // namespace

StepArguments readStepArguments(std::u16string_view step, const std::vector<StepParameter>& parameters,
                                Parser* in) {
    return in == nullptr ? StepArguments(parameters.size()) : ArgumentReader(step, parameters, *in).read();
}

} // namespace host
