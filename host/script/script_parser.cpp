// Reading order: the table of steps, then the parser: blocks (If, Loop) kept on a stack, brackets read by the
// calculation parser itself.
#include "host/calc/parser.h"
#include "host/calc/suggest.h"
#include "host/script/external_step_parser.h"
#include "host/script/script.h"
#include "host/script/step_syntax.h"
#include "host/values/text.h"

#include <array>

namespace host {

namespace {

enum class StepName : uint8_t {
    setVariable,
    ifStep,
    elseIf,
    elseStep,
    endIf,
    loop,
    exitLoopIf,
    endLoop,
    showCustomDialog,
    performScript,
    exitScript,
    insertPicture,
    insertFile,
    exportFieldContents,
    pauseScript,
};

struct StepRow {
    std::u16string_view name;
    StepName step;
    bool needsBrackets;
};

constexpr std::array kSteps = {
    StepRow{u"Set Variable", StepName::setVariable, true},
    StepRow{u"If", StepName::ifStep, true},
    StepRow{u"Else If", StepName::elseIf, true},
    StepRow{u"Else", StepName::elseStep, false},
    StepRow{u"End If", StepName::endIf, false},
    StepRow{u"Loop", StepName::loop, false},
    StepRow{u"Exit Loop If", StepName::exitLoopIf, true},
    StepRow{u"End Loop", StepName::endLoop, false},
    StepRow{u"Show Custom Dialog", StepName::showCustomDialog, true},
    StepRow{u"Perform Script", StepName::performScript, true},
    StepRow{u"Exit Script", StepName::exitScript, false},
    StepRow{u"Insert Picture", StepName::insertPicture, true},
    StepRow{u"Insert File", StepName::insertFile, true},
    StepRow{u"Export Field Contents", StepName::exportFieldContents, true},
    StepRow{u"Pause/Resume Script", StepName::pauseScript, true},
};

const StepRow* findOwnStep(std::u16string_view key) {
    for (const StepRow& row : kSteps) {
        if (foldName(row.name) == key) {
            return &row;
        }
    }
    return nullptr;
}

bool isLineEnd(char16_t c) {
    return c == u'\r' || c == u'\n';
}
// An If or Loop whose end has not been reached.
struct Block {
    StepName opener;                 // ifStep, elseStep (an If past its Else) or loop
    size_t begin;                    // where it stands in the source
    size_t start = 0;                // loop: the first step of the body
    std::optional<size_t> condition; // If: the step that waits for the next branch
    std::vector<size_t> leaving;     // the steps that go to the block's end
};

class ScriptParser {
  public:
    ScriptParser(SourcePtr source, const FunctionRegistry& functions, const StepRegistry& externalSteps)
        : source_(std::move(source)), text_(source_->text()), functions_(functions),
          externalSteps_(externalSteps) {}

    Script parse() {
        while (skipToStep()) {
            readStep();
        }
        if (!blocks_.empty()) {
            const bool isLoop = blocks_.back().opener == StepName::loop;
            fail(blocks_.back().begin, CalcCode::unexpectedEnd,
                 isLoop ? "this Loop is not closed; expected End Loop"
                        : "this If is not closed; expected End If");
        }
        return Script{source_, std::move(steps_)};
    }

  private:
    // Goes past blank lines, comments (#) and disabled steps (//). False at the end of the text.
    bool skipToStep() {
        while (at_ < text_.size()) {
            if (isSpace(text_[at_]) || isLineEnd(text_[at_])) {
                ++at_;
            } else if (text_[at_] == u'#' || text_.substr(at_).starts_with(u"//")) {
                while (at_ < text_.size() && !isLineEnd(text_[at_])) {
                    ++at_;
                }
            } else {
                return true;
            }
        }
        return false;
    }

    void readStep() {
        begin_ = at_;
        size_t end = at_;
        while (end < text_.size() && !isLineEnd(text_[end]) && text_[end] != u'[') {
            ++end;
        }
        const std::u16string name = normalName(text_.substr(at_, end - at_));
        const std::u16string key = foldName(name);
        const StepRow* own = findOwnStep(key);
        const ExternalStepPtr external = own == nullptr ? externalSteps_.find(key) : nullptr;
        if (own == nullptr && external == nullptr) {
            failUnknown(name);
        }
        at_ = end;
        std::optional<Parser> brackets;
        if (at_ < text_.size() && text_[at_] == u'[') {
            brackets.emplace(source_, at_ + 1, functions_);
        } else if (own != nullptr && own->needsBrackets) {
            fail(at_, at_ == text_.size() ? CalcCode::unexpectedEnd : CalcCode::operatorOrFunctionExpected,
                 "expected \"[\" after " + toUtf8(name));
        }
        const size_t known = steps_.size();
        Parser* const in = brackets ? &*brackets : nullptr;
        if (own != nullptr) {
            step(*own, in);
        } else {
            add(StepKind::external).external =
                std::make_shared<const ExternalStepCall>(readExternalStep(external, in));
        }
        if (brackets) {
            if (brackets->current().kind != TokenKind::rightBracket) {
                brackets->failExpected("an operator or the \"]\" of " + toUtf8(name),
                                       CalcCode::unbalancedParenthesis);
            }
            at_ = brackets->current().end;
        }
        for (size_t i = known; i < steps_.size(); ++i) {
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

    [[noreturn]] void failUnknown(const std::u16string& name) const {
        Suggestion nearest(name);
        for (const StepRow& row : kSteps) {
            nearest.consider(row.name);
        }
        for (const auto& [key, step] : externalSteps_.all()) {
            nearest.consider(step->name());
        }
        fail(begin_, CalcCode::operatorOrFunctionExpected,
             "there is no script step called " + toUtf8(name) + nearest.question());
    }

    // Reads what stands in the brackets of a step, up to but without the closing one, and adds what it does.
    void step(const StepRow& row, Parser* in) {
        switch (row.step) {
        case StepName::setVariable:
            return setVariable(*in);
        case StepName::ifStep:
            blocks_.push_back({StepName::ifStep, begin_, 0, {}, {}});
            return branch(*in);
        case StepName::elseIf:
            closeBranch(row);
            return branch(*in);
        case StepName::elseStep:
            closeBranch(row);
            blocks_.back().opener = StepName::elseStep;
            return;
        case StepName::endIf:
            return endIf(row);
        case StepName::loop:
            blocks_.push_back({StepName::loop, begin_, steps_.size(), {}, {}});
            return loopOptions(in);
        case StepName::exitLoopIf:
            return exitLoopIf(*in);
        case StepName::endLoop:
            return endLoop(row);
        case StepName::showCustomDialog:
            add(StepKind::showCustomDialog).first = in->calculation();
            if (in->accept(TokenKind::semicolon)) {
                steps_.back().second = in->calculation();
            }
            return;
        case StepName::performScript:
            return performScript(*in);
        case StepName::exitScript:
            return exitScript(in);
        case StepName::insertPicture:
            return insert(StepKind::insertPicture, *in);
        case StepName::insertFile:
            return insert(StepKind::insertFile, *in);
        case StepName::exportFieldContents:
            return exportContents(*in);
        case StepName::pauseScript:
            return pause(*in);
        }
    }

    // The variable that a step sets, and the semicolon after it.
    static std::u16string targetVariable(Parser& in) {
        std::u16string name = readVariable(in);
        in.expect(TokenKind::semicolon, "\";\" after the variable");
        return name;
    }

    void setVariable(Parser& in) {
        add(StepKind::setVariable).name = targetVariable(in);
        readLabel(in, {u"value"}, "\"Value:\"");
        steps_.back().first = in.calculation();
    }

    void branch(Parser& in) {
        Step& test = add(StepKind::jumpUnless);
        blocks_.back().condition = steps_.size() - 1;
        test.first = in.calculation();
    }

    // The end of a branch that another one follows: what ran the branch leaves, what did not run it comes
    // here.
    void closeBranch(const StepRow& row) {
        if (blocks_.empty() || blocks_.back().opener != StepName::ifStep) {
            const bool afterElse = !blocks_.empty() && blocks_.back().opener == StepName::elseStep;
            fail(begin_, CalcCode::operatorOrFunctionExpected,
                 toUtf8(row.name) +
                     (afterElse ? " after Else; expected End If" : " without an If before it"));
        }
        add(StepKind::jump);
        blocks_.back().leaving.push_back(steps_.size() - 1);
        steps_[*blocks_.back().condition].target = steps_.size();
        blocks_.back().condition.reset();
    }

    void endIf(const StepRow& row) {
        if (blocks_.empty() || blocks_.back().opener == StepName::loop) {
            unmatched(row, "If");
        }
        if (blocks_.back().condition) {
            blocks_.back().leaving.push_back(*blocks_.back().condition);
        }
        closeBlock();
    }

    void endLoop(const StepRow& row) {
        if (blocks_.empty() || blocks_.back().opener != StepName::loop) {
            unmatched(row, "Loop");
        }
        add(StepKind::jump).target = blocks_.back().start;
        closeBlock();
    }

    void closeBlock() {
        for (const size_t leaving : blocks_.back().leaving) {
            steps_[leaving].target = steps_.size();
        }
        blocks_.pop_back();
    }

    [[noreturn]] void unmatched(const StepRow& row, const std::string& opener) const {
        std::string message =
            toUtf8(row.name) + " without " + (opener == "If" ? "an " : "a ") + opener + " before it";
        if (!blocks_.empty()) {
            message += blocks_.back().opener == StepName::loop ? "; expected End Loop" : "; expected End If";
        }
        fail(begin_, CalcCode::operatorOrFunctionExpected, std::move(message));
    }

    void exitLoopIf(Parser& in) {
        size_t i = blocks_.size();
        while (i > 0 && blocks_[i - 1].opener != StepName::loop) {
            --i;
        }
        if (i == 0) {
            fail(begin_, CalcCode::operatorOrFunctionExpected, "Exit Loop If outside a Loop");
        }
        add(StepKind::exitLoopIf).first = in.calculation();
        blocks_[i - 1].leaving.push_back(steps_.size() - 1);
    }

    // Newer programs print when a loop writes its changes: [ Flush: Always ]. There is nothing to write here.
    static void loopOptions(Parser* in) {
        if (in != nullptr && in->current().kind != TokenKind::rightBracket) {
            readLabel(*in, {u"flush"}, "\"Flush:\"");
            if (in->current().kind != TokenKind::identifier) {
                in->failExpected("Always, Minimum or Defer", CalcCode::nameMissing);
            }
            in->advance();
        }
    }

    void performScript(Parser& in) {
        Step& call = add(StepKind::performScript);
        if (in.current().kind == TokenKind::identifier && foldName(in.current().text) == u"specified") {
            readLabel(in, {u"specified"}, "\"Specified:\"");
            while (in.current().kind == TokenKind::identifier) {
                in.advance(); // From list, By name: what follows tells them apart
            }
            in.expect(TokenKind::semicolon, "\";\" before the script");
        }
        if (in.current().kind == TokenKind::quoted) {
            call.name = in.current().text;
            in.advance();
        } else {
            call.first = in.calculation();
        }
        if (in.acceptWord(u"from")) {
            if (!in.acceptWord(u"file")) {
                in.failExpected("\"file\" after \"from\"", CalcCode::nameMissing);
            }
            in.accept(TokenKind::colon);
            if (in.current().kind != TokenKind::quoted && in.current().kind != TokenKind::text) {
                in.failExpected("the name of a file in quotes", CalcCode::nameMissing);
            }
            call.database = in.current().text;
            in.advance();
        }
        if (in.accept(TokenKind::semicolon)) {
            readLabel(in, {u"parameter"}, "\"Parameter:\"");
            if (in.current().kind != TokenKind::rightBracket) {
                call.second = in.calculation();
            }
        }
    }

    void exitScript(Parser* in) {
        Step& leave = add(StepKind::exitScript);
        if (in == nullptr || in->current().kind == TokenKind::rightBracket) {
            return;
        }
        readLabel(*in, {u"text", u"result"}, "\"Text Result:\"");
        if (in->current().kind != TokenKind::rightBracket) {
            leave.first = in->calculation();
        }
    }

    // [ Target: $variable ; path ]; the word Target may be left out.
    void insert(StepKind kind, Parser& in) {
        Step& step = add(kind);
        if (in.current().kind == TokenKind::identifier) {
            readLabel(in, {u"target"}, "\"Target:\"");
        }
        step.name = targetVariable(in);
        step.first = in.calculation();
    }

    void exportContents(Parser& in) {
        Step& step = add(StepKind::exportContents);
        step.first = in.calculation();
        in.expect(TokenKind::semicolon, "\";\" after what is exported");
        step.second = in.calculation();
    }

    void pause(Parser& in) {
        constexpr std::string_view kLabel = "\"Duration (seconds):\"";
        Step& step = add(StepKind::pause);
        if (!in.acceptWord(u"duration") || !in.accept(TokenKind::leftParen) || !in.acceptWord(u"seconds") ||
            !in.accept(TokenKind::rightParen) || !in.accept(TokenKind::colon)) {
            in.failExpected(kLabel, CalcCode::nameMissing);
        }
        step.first = in.calculation();
    }

    Step& add(StepKind kind) {
        Step& added = steps_.emplace_back();
        added.kind = kind;
        return added;
    }

    [[noreturn]] void fail(size_t offset, CalcCode code, std::string message) const {
        throw CalcError(parseErrorKind(code), code, source_, offset, std::move(message));
    }

    SourcePtr source_;
    std::u16string_view text_;
    const FunctionRegistry& functions_;
    const StepRegistry& externalSteps_;
    size_t at_ = 0;
    size_t begin_ = 0; // of the step being read
    std::vector<Step> steps_;
    std::vector<Block> blocks_;
};

} // namespace

Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps) {
    return ScriptParser(source, functions, externalSteps).parse();
}

bool isStepName(std::u16string_view key) {
    return findOwnStep(key) != nullptr;
}

} // namespace host
