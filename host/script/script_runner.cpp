#include "host/script/script_runner.h"

#include "host/values/depth.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

Value ScriptRunner::run(const std::filesystem::path& file, Value parameter) {
    const DepthGuard level(depth_);
    const TimedWork work(session_);
    const ScriptPtr script = library_.load(file);
    const ScriptFrame frame(session_, fromUtf8(file.stem().string()), std::move(parameter));
    if (depth_ > 1) {
        return runSteps(*script);
    }
    // The settings of scripts last until the outermost script has ended.
    Environment& environment = session_.environment();
    environment.errorCapture = false;
    environment.allowUserAbort = true;
    environment.animation = false;
    environment.revertTransactionOnError = true;
    try {
        return runSteps(*script);
    } catch (const ScriptsHalted&) {
        return {};
    }
}

// Throws CalcError when the scripts must end.
void ScriptRunner::requireTime(const Script& script, const Step& step) const {
    if (const char* reason = session_.reasonToStopNow()) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin, reason);
    }
}

Value ScriptRunner::runSteps(const Script& script) {
    size_t at = 0;
    while (at < script.steps.size()) {
        const Step& step = script.steps[at];
        requireTime(script, step);
        ++at;
        if (step.flow == Flow::jump) {
            at = step.target;
            continue;
        }
        StepContext context(*this, script, step);
        if (step.flow != Flow::next) {
            const Value condition = context.value(0);
            context.trace(condition);
            at = condition.asBoolean() == (step.flow == Flow::jumpIf) ? step.target : at;
            continue;
        }
        try {
            if (step.own != nullptr) {
                runOwn(context, script, step);
            } else {
                runExternal(context, script, step);
            }
        } catch (const StepFailure& failure) {
            fail(script, step, failure);
        }
        if (context.result()) {
            return std::move(*context.result());
        }
    }
    return {};
}

void ScriptRunner::runOwn(StepContext& context, const Script& script, const Step& step) {
    const StepRow& row = step.own->row;
    switch (row.form) {
    case StepForm::run:
        row.run(context);
        session_.setLastError(0);
        return;
    case StepForm::quiet:
        row.run(context);
        return;
    case StepForm::unavailable:
        session_.setLastError(kCommandUnavailable);
        errorLog_.write(script.source->name(), session_.frame().scriptName, step.own->name(),
                        script.source->place(step.begin).line, kCommandUnavailable);
        return;
    default:
        session_.setLastError(0);
        return;
    }
}

void ScriptRunner::fail(const Script& script, const Step& step, const StepFailure& failure) {
    const uint32_t line = script.source->place(step.begin).line;
    const std::u16string name(step.own != nullptr ? step.own->name() : step.external->name());
    Environment& environment = session_.environment();
    session_.setLastError(failure.code());
    environment.lastErrorDetail = fromUtf8(failure.what());
    environment.lastErrorLocation =
        session_.frame().scriptName + u"\r" + name + u"\r" + fromUtf8(std::to_string(line));
    errorLog_.write(script.source->name(), session_.frame().scriptName, name, line, failure.code());
    if (!environment.errorCapture) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source,
                        failure.offset().value_or(step.begin), failure.what());
    }
}

void ScriptRunner::runExternal(StepContext& context, const Script& script, const Step& step) {
    const auto failStep = [&](const std::string& message) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin,
                        toUtf8(step.external->name()) + message);
    };
    if (!step.external->registered()) {
        failStep(" is no longer registered");
    }
    std::vector<Value> values;
    std::optional<size_t> target;
    for (size_t i = 0; i < step.arguments.size(); ++i) {
        const StepParameter& parameter = step.external->parameters()[i];
        const bool isFixed =
            parameter.kind == StepParameter::Kind::flag || parameter.kind == StepParameter::Kind::choice;
        Value value =
            isFixed ? Value::number(context.number(i, parameter.standard)) : Value::empty(parameter.type);
        if (parameter.kind == StepParameter::Kind::target) {
            target = i;
        } else if (!isFixed && context.isGiven(i)) {
            value = context.value(i).convertedTo(parameter.type);
        }
        values.resize(std::max(values.size(), parameter.index + 1));
        values[parameter.index] = std::move(value);
    }
    try {
        Value result = step.external->run(session_, values);
        context.trace(result);
        if (target && session_.lastError() == 0) {
            context.assign(*target, std::move(result));
        }
    } catch (const ExternalFailure& failure) {
        failStep(std::string(" failed: ") + failure.what());
    }
}

std::optional<ScriptRequest> ScriptRunner::dueScript() {
    const auto now = std::chrono::steady_clock::now();
    if (!timer_ || now < timer_->next) {
        return std::nullopt;
    }
    timer_->next = now + std::chrono::duration_cast<std::chrono::steady_clock::duration>(timer_->interval);
    return timer_->script;
}

} // namespace host
