#include "host/editor/step_options.h"

#include "host/calc/lexer.h"
#include "host/calc/registry.h"
#include "host/script/own_steps.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

using Kind = StepParameter::Kind;

// The parameters of a step, and the offset behind its opening bracket.
struct OpenStep {
    std::span<const StepParameter> parameters;
    std::u16string prototype;
    size_t inside = 0;
};

// Returns the step with which a line begins that stands from [begin] to [end], and that has its bracket there.
std::optional<OpenStep> stepOf(const std::u16string& text, size_t begin, size_t end,
                               const Vocabulary& known) {
    const size_t bracket = text.find(u'[', begin);
    if (bracket >= end) {
        return std::nullopt;
    }
    const std::u16string key = foldName(normalName(std::u16string_view(text).substr(begin, bracket - begin)));
    if (const ExternalStepPtr external = known.steps.find(key)) {
        return OpenStep{external->parameters(), stepPrototype(external->name(), external->parameters()),
                        bracket + 1};
    }
    const OwnStep* own = findOwnStep(key);
    return own == nullptr
               ? std::nullopt
               : std::optional(OpenStep{own->parameters, std::u16string(own->row.prototype), bracket + 1});
}

// Returns the step whose brackets [offset] may stand in: of its line, or of the nearest line before that begins
// with a step's name.
std::optional<OpenStep> stepBefore(const Document& document, size_t offset, const Vocabulary& known) {
    const std::u16string& text = document.text();
    for (size_t end = offset;;) {
        const size_t lineEnd = end == 0 ? std::u16string::npos : text.find_last_of(u"\r\n", end - 1);
        const size_t begin = lineEnd == std::u16string::npos ? 0 : lineEnd + 1;
        if (auto step = stepOf(text, begin, std::min(offset, text.size()), known)) {
            return step;
        }
        if (begin == 0) {
            return std::nullopt;
        }
        end = begin - 1;
    }
}

// The parts between the semicolons of a step.
struct Parts {
    std::vector<size_t>
        begins;            // none when the place is not in a part itself, but in a text or in parentheses
    bool isBehind = false; // the place is behind the closing bracket
};

Parts partsBefore(const Document& document, size_t inside, size_t offset) {
    Parts parts{{inside}};
    int depth = 0;
    Lexer lexer(std::make_shared<Source>("", document.text().substr(0, offset)), inside);
    try {
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            depth += token.kind == TokenKind::leftParen || token.kind == TokenKind::leftBracket ? 1 : 0;
            depth -= token.kind == TokenKind::rightParen || token.kind == TokenKind::rightBracket ? 1 : 0;
            if (depth < 0) {
                return {{}, true};
            }
            if (depth == 0 && token.kind == TokenKind::semicolon) {
                parts.begins.push_back(token.end);
            }
        }
    } catch (const CalcError&) { // in a text, if it is of this line
        return {{}, document.lineBefore(offset).size() < offset - inside};
    }
    return depth == 0 ? parts : Parts();
}

// Returns the parameter whose label a part begins with; null when there is none.
const StepParameter* labelled(std::span<const StepParameter> parameters, std::u16string_view part) {
    const bool hasColon = part.find(u':') != std::u16string_view::npos;
    const std::u16string label = foldName(normalName(part.substr(0, part.find(u':'))));
    const auto found =
        std::find_if(parameters.begin(), parameters.end(), [&](const StepParameter& parameter) {
            const bool isLabel =
                foldName(parameter.label) == label || foldName(parameter.olderLabel) == label;
            return !label.empty() && isLabel && hasColon == (parameter.kind != Kind::word);
        });
    return found == parameters.end() ? nullptr : &*found;
}

// Returns the parameter that the next value without a label is for; null when all are given.
const StepParameter* nextWithoutLabel(std::span<const StepParameter> parameters,
                                      const std::vector<const StepParameter*>& given) {
    const auto found =
        std::find_if(parameters.begin(), parameters.end(), [&](const StepParameter& parameter) {
            return !parameter.needsLabel && parameter.kind != Kind::word &&
                   std::ranges::count(given, &parameter) == 0;
        });
    return found == parameters.end() ? nullptr : &*found;
}

// Returns the words that may be a parameter's value; none for calculations, variables and scripts.
std::vector<std::u16string> valuesOf(const StepParameter& parameter) {
    if (parameter.kind == Kind::flag) {
        return {u"On", u"Off"};
    }
    std::vector<std::u16string> words;
    words.reserve(parameter.choices.size());
    for (const StepParameter::Choice& choice : parameter.choices) {
        words.push_back(choice.word);
    }
    return words;
}

} // namespace

StepOptions stepOptions(const Document& document, size_t offset, const Vocabulary& known) {
    StepOptions result;
    const auto step =
        document.kind() == FileKind::script ? stepBefore(document, offset, known) : std::optional<OpenStep>();
    const auto [parts, isBehind] = step ? partsBefore(document, step->inside, offset) : Parts();
    result.isInside = step && !isBehind;
    result.isWhole = isBehind;
    result.begin = offset;
    if (parts.empty()) {
        return result;
    }
    result.prototype = step->prototype;
    const std::u16string_view text = document.text();
    std::vector<const StepParameter*> given;
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
        const StepParameter* parameter =
            labelled(step->parameters, text.substr(parts[i], parts[i + 1] - parts[i] - 1));
        given.push_back(parameter != nullptr ? parameter : nextWithoutLabel(step->parameters, given));
    }
    const size_t colon = text.substr(0, offset).find(u':', parts.back());
    const bool hasLabel = colon != std::u16string_view::npos;
    const size_t begin = text.find_first_not_of(u" \t\r\n", hasLabel ? colon + 1 : parts.back());
    result.begin = std::min(begin, offset);
    const std::u16string prefix = foldName(text.substr(result.begin, offset - result.begin));
    const auto offer = [&](const std::u16string& word) {
        if (foldName(word).starts_with(prefix)) {
            result.words.push_back(word);
        }
    };
    const StepParameter* current = hasLabel ? labelled(step->parameters, text.substr(parts.back(), offset))
                                            : nextWithoutLabel(step->parameters, given);
    if (current != nullptr) {
        const std::vector<std::u16string> values = valuesOf(*current);
        result.isWhole = !values.empty();
        std::ranges::for_each(values, offer);
    }
    if (!hasLabel) {
        result.isWhole = result.isWhole || current == nullptr; // a calculation would need a label
        for (const StepParameter& parameter : step->parameters) {
            if (!parameter.label.empty() && std::ranges::count(given, &parameter) == 0) {
                offer(parameter.kind == Kind::word ? parameter.label : parameter.label + u":");
            }
        }
    }
    return result;
}

} // namespace host
