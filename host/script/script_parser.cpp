// Reading order: parsing step by step, then the blocks (If, Loop), which are kept on a stack. The text in
// brackets is read by the calculation parser.
#include "host/calc/parser.h"
#include "host/calc/suggest.h"
#include "host/script/script.h"
#include "host/values/text.h"

namespace host {

namespace {

bool isLineEnd(char16_t c) {
    return c == u'\r' || c == u'\n';
}

// An If or Loop that is not closed yet.
struct Block {
    StepForm opener;                 // ifStep, elseStep (an If past its Else) or loop
    size_t begin;                    // where it stands in the source
    size_t start = 0;                // loop: the first step of the body
    std::optional<size_t> condition; // If: the jumpUnless that goes to the next branch
    std::vector<size_t> leaving;     // the steps that jump to the block's end
};

class ScriptParser {
  public:
    ScriptParser(SourcePtr source, const FunctionRegistry& functions, const StepRegistry& externalSteps,
                 std::vector<CalcError>& errors)
        : source_(std::move(source)), text_(source_->text()), functions_(functions),
          externalSteps_(externalSteps), errors_(errors) {}

    Script parse() {
        while (skipToStep()) {
            begin_ = at_;
            try {
                readStep();
            } catch (const CalcError& error) {
                errors_.push_back(error);
                at_ = endOfBadStep(error);
            }
        }
        for (const Block& block : blocks_) {
            errors_.push_back(error(block.begin, CalcCode::unexpectedEnd,
                                    block.opener == StepForm::loop
                                        ? "this Loop is not closed; expected End Loop"
                                        : "this If is not closed; expected End If"));
        }
        return Script{source_, std::move(steps_)};
    }

  private:
    // Skips blank lines, comments (#) and disabled steps (//). Returns false at the end of the text.
    bool skipToStep() {
        while (at_ < text_.size()) {
            if (isSpace(text_[at_]) || isLineEnd(text_[at_])) {
                ++at_;
            } else if (text_[at_] == u'#' || text_.substr(at_).starts_with(u"//")) {
                at_ = endOfLine(at_);
            } else {
                return true;
            }
        }
        return false;
    }

    size_t endOfLine(size_t from) const { return std::min(text_.find_first_of(u"\r\n", from), text_.size()); }

    // Returns where parsing continues after a step with an error: after its closing bracket, else on the line
    // after the error.
    size_t endOfBadStep(const CalcError& error) const {
        const size_t open = text_.find_first_of(u"[\r\n", begin_);
        if (open < text_.size() && text_[open] == u'[') {
            try {
                Lexer lexer(source_, open);
                int depth = 0;
                for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
                    depth += token.kind == TokenKind::leftBracket ? 1 : 0;
                    depth -= token.kind == TokenKind::rightBracket ? 1 : 0;
                    if (depth == 0) {
                        return endOfLine(token.begin);
                    }
                }
            } catch (const CalcError&) { // a text without its end, so that the closing bracket is not known
            }
        }
        // An error at the first word of a line belongs to the step before, whose bracket is not closed.
        const size_t lineStart = text_.find_last_of(u"\r\n", error.offset() == 0 ? 0 : error.offset() - 1);
        const bool isFirstWord =
            error.code() != CalcCode::unterminatedText && lineStart != text_.npos && lineStart >= begin_ &&
            normalName(text_.substr(lineStart + 1, error.offset() - lineStart - 1)).empty();
        return isFirstWord ? lineStart : endOfLine(std::max(error.offset(), begin_));
    }

    void readStep() {
        size_t end = std::min(text_.find_first_of(u"[\r\n", at_), text_.size());
        const std::u16string name = normalName(text_.substr(at_, end - at_));
        const std::u16string key = foldName(name);
        const OwnStep* own = findOwnStep(key);
        const ExternalStepPtr external =
            own == nullptr || !own->isSupported() ? externalSteps_.find(key) : nullptr;
        const bool isExternal = external != nullptr;
        if (isExternal) {
            own = nullptr;
        } else if (own == nullptr) {
            failUnknown(name);
        } else if (own->row.form == StepForm::refused) {
            fail(begin_, CalcCode::notSupportedHere,
                 toUtf8(own->name()) + " is not supported: " + std::string(own->row.description));
        }
        const size_t known = steps_.size();
        Step* const step = isExternal ? &add(Flow::next) : open(*own);
        if (isExternal) {
            step->external = external;
        }
        at_ = end;
        const std::vector<StepParameter>& parameters = isExternal ? external->parameters() : own->parameters;
        readBrackets(name, parameters, step);
        for (size_t i = known; i < steps_.size(); ++i) {
            steps_[i].own = own;
            steps_[i].begin = begin_;
            steps_[i].end = at_;
        }
        while (at_ < text_.size() && isSpace(text_[at_])) {
            ++at_;
        }
        if (at_ < text_.size() && !isLineEnd(text_[at_])) {
            fail(at_, CalcCode::operatorOrFunctionExpected,
                 "expected the end of the line after " + toUtf8(name));
        }
    }

    void readBrackets(std::u16string_view name, const std::vector<StepParameter>& parameters, Step* step) {
        if (at_ == text_.size() || text_[at_] != u'[') {
            for (const StepParameter& parameter : parameters) {
                if (parameter.isRequired) {
                    fail(at_,
                         at_ == text_.size() ? CalcCode::unexpectedEnd : CalcCode::operatorOrFunctionExpected,
                         "expected \"[\" after " + toUtf8(name));
                }
            }
            if (step != nullptr) {
                step->arguments.resize(parameters.size());
            }
            return;
        }
        Parser in(source_, at_ + 1, functions_);
        StepArguments arguments = readStepArguments(name, parameters, &in);
        if (in.current().kind != TokenKind::rightBracket) {
            in.failExpected("an operator or the \"]\" of " + toUtf8(name), CalcCode::unbalancedParenthesis);
        }
        at_ = in.current().end;
        if (step != nullptr) {
            step->arguments = std::move(arguments);
        }
    }

    [[noreturn]] void failUnknown(const std::u16string& name) const {
        Suggestion nearest(name);
        for (const OwnStep& step : ownSteps()) {
            nearest.consider(step.name());
        }
        for (const auto& [key, step] : externalSteps_.all()) {
            nearest.consider(step->name());
        }
        fail(begin_, CalcCode::operatorOrFunctionExpected,
             "there is no script step called " + toUtf8(name) + nearest.question());
    }

    // Adds a step without its arguments, and returns it for these. Blocks are opened even if the brackets
    // have an error, so that their ends are found.
    Step* open(const OwnStep& own) {
        switch (own.row.form) {
        case StepForm::ifStep:
            blocks_.push_back({StepForm::ifStep, begin_, 0, {}, {}});
            return branch();
        case StepForm::elseIf:
            closeBranch(own);
            return branch();
        case StepForm::elseStep:
            closeBranch(own);
            blocks_.back().opener = StepForm::elseStep;
            return nullptr;
        case StepForm::endIf:
            endIf(own);
            return nullptr;
        case StepForm::loop:
            blocks_.push_back({StepForm::loop, begin_, steps_.size(), {}, {}});
            return nullptr;
        case StepForm::exitLoopIf:
            return exitLoopIf();
        case StepForm::endLoop:
            endLoop(own);
            return nullptr;
        default:
            return &add(Flow::next);
        }
    }

    Step* branch() {
        blocks_.back().condition = steps_.size();
        return &add(Flow::jumpUnless);
    }

    // Ends a branch that another one follows: adds a jump to the block's end, and makes the branch's
    // condition jump behind it when it is false.
    void closeBranch(const OwnStep& own) {
        if (blocks_.empty() || blocks_.back().opener != StepForm::ifStep) {
            const bool afterElse = !blocks_.empty() && blocks_.back().opener == StepForm::elseStep;
            fail(begin_, CalcCode::operatorOrFunctionExpected,
                 toUtf8(own.name()) +
                     (afterElse ? " after Else; expected End If" : " without an If before it"));
        }
        add(Flow::jump);
        blocks_.back().leaving.push_back(steps_.size() - 1);
        steps_[*blocks_.back().condition].target = steps_.size();
        blocks_.back().condition.reset();
    }

    void endIf(const OwnStep& own) {
        if (blocks_.empty() || blocks_.back().opener == StepForm::loop) {
            unmatched(own, "If");
        }
        if (blocks_.back().condition) {
            blocks_.back().leaving.push_back(*blocks_.back().condition);
        }
        closeBlock();
    }

    void endLoop(const OwnStep& own) {
        if (blocks_.empty() || blocks_.back().opener != StepForm::loop) {
            unmatched(own, "Loop");
        }
        add(Flow::jump).target = blocks_.back().start;
        closeBlock();
    }

    void closeBlock() {
        for (const size_t leaving : blocks_.back().leaving) {
            steps_[leaving].target = steps_.size();
        }
        blocks_.pop_back();
    }

    [[noreturn]] void unmatched(const OwnStep& own, const std::string& opener) const {
        std::string message =
            toUtf8(own.name()) + " without " + (opener == "If" ? "an " : "a ") + opener + " before it";
        if (!blocks_.empty()) {
            message += blocks_.back().opener == StepForm::loop ? "; expected End Loop" : "; expected End If";
        }
        fail(begin_, CalcCode::operatorOrFunctionExpected, std::move(message));
    }

    Step* exitLoopIf() {
        size_t i = blocks_.size();
        while (i > 0 && blocks_[i - 1].opener != StepForm::loop) {
            --i;
        }
        if (i == 0) {
            fail(begin_, CalcCode::operatorOrFunctionExpected, "Exit Loop If outside a Loop");
        }
        blocks_[i - 1].leaving.push_back(steps_.size());
        return &add(Flow::jumpIf);
    }

    Step& add(Flow flow) {
        Step& added = steps_.emplace_back();
        added.flow = flow;
        return added;
    }

    CalcError error(size_t offset, CalcCode code, std::string message) const {
        return {parseErrorKind(code), code, source_, offset, std::move(message)};
    }

    [[noreturn]] void fail(size_t offset, CalcCode code, std::string message) const {
        throw error(offset, code, std::move(message));
    }

    SourcePtr source_;
    std::u16string_view text_;
    const FunctionRegistry& functions_;
    const StepRegistry& externalSteps_;
    std::vector<CalcError>& errors_;
    size_t at_ = 0;
    size_t begin_ = 0; // of the step being read
    std::vector<Step> steps_;
    std::vector<Block> blocks_;
};

} // namespace

Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps, std::vector<CalcError>& errors) {
    return ScriptParser(source, functions, externalSteps, errors).parse();
}

Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps) {
    std::vector<CalcError> errors;
    Script script = parseScript(source, functions, externalSteps, errors);
    if (!errors.empty()) {
        throw CalcError(errors.front());
    }
    return script;
}

} // namespace host
