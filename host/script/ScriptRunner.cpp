#include "host/script/ScriptRunner.h"

#include "host/values/Text.h"

namespace host {

Value ScriptRunner::run(const std::filesystem::path& file, Value parameter) {
    const ScriptPtr script = library_.load(file);
    const ScriptFrame frame(session_, fromUtf8(file.stem().string()), std::move(parameter));
    return run(*script);
}

Value ScriptRunner::run(const Script& script) {
    size_t at = 0;
    while (at < script.steps.size()) {
        const Step& step = script.steps[at];
        ++at;
        switch (step.kind) {
        case StepKind::setVariable:
            session_.setVariable(step.name, evaluate(script, step));
            break;
        case StepKind::jumpUnless:
            at = evaluate(script, step).asBoolean() ? at : step.target;
            break;
        case StepKind::jump:
            at = step.target;
            break;
        case StepKind::exitLoopIf:
            at = evaluate(script, step).asBoolean() ? step.target : at;
            break;
        case StepKind::showCustomDialog: {
            const Value title = session_.evaluate(*step.first);
            listener_.dialog(title, step.second ? session_.evaluate(*step.second) : Value());
            break;
        }
        case StepKind::performScript:
            perform(script, step);
            break;
        case StepKind::exitScript:
            return step.first ? evaluate(script, step) : Value();
        }
    }
    return {};
}

Value ScriptRunner::evaluate(const Script& script, const Step& step) {
    Value result = session_.evaluate(*step.first);
    listener_.evaluated(script, step, result);
    return result;
}

void ScriptRunner::perform(const Script& script, const Step& step) {
    const std::u16string name = step.first ? session_.evaluate(*step.first).asText() : step.name;
    Value parameter = step.second ? session_.evaluate(*step.second) : Value();
    const auto file = library_.find(step.database, name);
    if (!file) {
        session_.frame().scriptResult = Value();
        session_.setLastError(kScriptMissing);
        return;
    }
    if (depth_ == kMaxScriptDepth) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin,
                        "scripts perform each other too deeply: at most " + std::to_string(kMaxScriptDepth) +
                            " levels");
    }
    struct Deeper {
        int& depth;
        explicit Deeper(int& counter) : depth(counter) { ++depth; }
        ~Deeper() { --depth; }
    } const deeper(depth_);
    Value result = run(*file, std::move(parameter));
    session_.frame().scriptResult = std::move(result);
    session_.setLastError(0);
}

void ScriptQueue::push(Request request) {
    const std::lock_guard lock(mutex_);
    waiting_.push(std::move(request));
}

std::optional<ScriptQueue::Request> ScriptQueue::pop() {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) {
        return std::nullopt;
    }
    Request next = std::move(waiting_.front());
    waiting_.pop();
    return next;
}

} // namespace host
