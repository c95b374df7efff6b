#include "host/script/external_step_parser.h"

#include "host/calc/suggest.h"
#include "host/script/step_syntax.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

class ExternalStepParser {
  public:
    ExternalStepParser(const ExternalStepPtr& step, Parser& in)
        : step_(*step), in_(in), given_(step->parameters().size()) {
        call_.step = step;
    }

    ExternalStepCall parse() {
        if (in_.current().kind != TokenKind::rightBracket) {
            do {
                readParameter();
            } while (in_.accept(TokenKind::semicolon));
        }
        return std::move(call_);
    }

  private:
    using Kind = StepParameter::Kind;

    void readParameter() {
        const size_t begin = in_.current().begin;
        const size_t place = labelled().value_or(
            static_cast<size_t>(std::find(given_.begin(), given_.end(), false) - given_.begin()));
        if (place == given_.size()) {
            in_.failExpected("the \"]\" of " + toUtf8(stepPrototype(step_)), CalcCode::tooManyArguments);
        }
        const StepParameter& parameter = step_.parameters()[place];
        if (given_[place]) {
            in_.fail(begin, CalcCode::operatorOrFunctionExpected,
                     toUtf8(parameter.label) + " is given twice");
        }
        given_[place] = true;
        switch (parameter.kind) {
        case Kind::calculation:
            call_.arguments.push_back({&parameter, in_.calculation(), 0});
            return;
        case Kind::flag:
            call_.arguments.push_back({&parameter, std::nullopt, flag() ? 1 : 0});
            return;
        case Kind::choice:
            call_.arguments.push_back({&parameter, std::nullopt, choice(parameter)});
            return;
        case Kind::target:
            call_.target = readVariable(in_);
            return;
        }
    }

    // Takes a label and its colon; answers whose it is. A calculation has no colon outside texts, so that
    // what stands before one is a label.
    std::optional<size_t> labelled() {
        const std::u16string_view text = in_.source()->text();
        const size_t begin = in_.current().begin;
        const size_t colon = text.find_first_of(u":;[]\"\u201C\r\n", begin);
        if (colon == text.npos || text[colon] != u':') {
            return std::nullopt;
        }
        const std::u16string label = normalName(text.substr(begin, colon - begin));
        const std::u16string key = foldName(label);
        Suggestion nearest(label);
        for (size_t i = 0; i < given_.size(); ++i) {
            const std::u16string& known = step_.parameters()[i].label;
            if (!known.empty() && foldName(known) == key) {
                in_.continueAt(colon + 1);
                return i;
            }
            nearest.consider(known);
        }
        in_.fail(begin, CalcCode::nameMissing,
                 toUtf8(step_.name()) + " has no parameter called " + toUtf8(label) + nearest.question());
    }

    bool flag() {
        const bool isOn = in_.acceptWord(u"on");
        if (!isOn && !in_.acceptWord(u"off")) {
            in_.failExpected("On or Off", CalcCode::nameMissing);
        }
        return isOn;
    }

    // A word of the definition, as it stands or in quotes.
    int choice(const StepParameter& parameter) {
        const std::u16string_view text = in_.source()->text();
        const Token& token = in_.current();
        const bool isQuoted = token.kind == TokenKind::text || token.kind == TokenKind::quoted;
        const size_t end =
            isQuoted ? token.end : std::min(text.find_first_of(u";]\r\n", token.begin), text.size());
        const std::u16string word =
            isQuoted ? token.text : normalName(text.substr(token.begin, end - token.begin));
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

    const ExternalStep& step_;
    Parser& in_;
    std::vector<bool> given_;
    ExternalStepCall call_;
};

} // namespace

ExternalStepCall readExternalStep(const ExternalStepPtr& step, Parser* in) {
    return in == nullptr ? ExternalStepCall{step, {}, {}} : ExternalStepParser(step, *in).parse();
}

} // namespace host
