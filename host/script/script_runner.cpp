#include "host/script/script_runner.h"

#include "host/script/file_bytes.h"
#include "host/values/depth.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace fs = std::filesystem;

Value ScriptRunner::run(const fs::path& file, Value parameter) {
    const DepthGuard level(depth_);
    const ScriptPtr script = library_.load(file);
    const ScriptFrame frame(session_, fromUtf8(file.stem().string()), std::move(parameter));
    return run(*script);
}

Value ScriptRunner::run(const Script& script) {
    size_t at = 0;
    while (at < script.steps.size()) {
        const Step& step = script.steps[at];
        if (session_.interruptFlag().load(std::memory_order_relaxed)) {
            throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin, "stopped");
        }
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
        case StepKind::insertPicture:
            insert(script, step, pictureContainer);
            break;
        case StepKind::insertFile:
            insert(script, step, fileContainer);
            break;
        case StepKind::exportContents:
            exportContents(script, step);
            break;
        case StepKind::pause:
            pause(script, step);
            break;
        case StepKind::external:
            runExternal(script, step);
            break;
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
    if (!canRun()) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin,
                        "scripts perform each other too deeply: at most " + std::to_string(kMaxScriptDepth) +
                            " levels");
    }
    Value result = run(*file, std::move(parameter));
    session_.frame().scriptResult = std::move(result);
    session_.setLastError(0);
}

void ScriptRunner::insert(const Script& script, const Step& step, ContainerMaker make) {
    const fs::path file = path(script, *step.first);
    Value contents;
    try {
        contents = Value::container(make(fromUtf8(file.filename().string()), readBytes(file)));
    } catch (const FileError& error) {
        fail(script, *step.first, error.what());
    }
    listener_.evaluated(script, step, contents);
    session_.setVariable(step.name, std::move(contents));
    session_.setLastError(0);
}

void ScriptRunner::exportContents(const Script& script, const Step& step) {
    const Value source = evaluate(script, step);
    if (source.type() != ValueType::container) {
        fail(script, *step.first, "expected a container to export");
    }
    const Container::Stream* stream = fileStream(source.asContainer());
    if (stream == nullptr) {
        fail(script, *step.first, "the container to export is empty");
    }
    try {
        writeBytes(path(script, *step.second), stream->bytes());
    } catch (const FileError& error) {
        fail(script, *step.second, error.what());
    }
    session_.setLastError(0);
}

// The path that a calculation gives, from the script's own folder; what FileMaker writes before a path to say
// what kind it is does not count.
fs::path ScriptRunner::path(const Script& script, const Calculation& calculation) {
    constexpr std::string_view kKinds[] = {"file:", "image:", "filelinux:", "imagelinux:"};
    std::string text = toUtf8(session_.evaluate(calculation).asText());
    for (const std::string_view kind : kKinds) {
        if (text.starts_with(kind)) {
            text.erase(0, kind.size());
            break;
        }
    }
    if (text.empty()) {
        fail(script, calculation, "the path is empty");
    }
    return fs::path(script.source->name()).parent_path() / text;
}

void ScriptRunner::pause(const Script& script, const Step& step) {
    constexpr double kLongest = 1e9; // seconds, some thirty years
    const auto seconds = evaluate(script, step).asNumber().value_or(0);
    listener_.paused(std::chrono::duration<double>(std::clamp(seconds.toDouble(), 0.0, kLongest)));
    session_.setLastError(0);
}

void ScriptRunner::runExternal(const Script& script, const Step& step) {
    const ExternalStepCall& call = *step.external;
    const auto failStep = [&](const std::string& message) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, step.begin,
                        toUtf8(call.step->name()) + message);
    };
    if (!call.step->registered()) {
        failStep(" is no longer registered");
    }
    std::vector<Value> values;
    const auto put = [&](const StepParameter& parameter, Value value) {
        values.resize(std::max(values.size(), parameter.index + 1));
        values[parameter.index] = std::move(value);
    };
    for (const StepParameter& parameter : call.step->parameters()) {
        const bool isFixed =
            parameter.kind == StepParameter::Kind::flag || parameter.kind == StepParameter::Kind::choice;
        put(parameter, isFixed ? Value::number(parameter.standard) : Value::empty(parameter.type));
    }
    for (const auto& [parameter, calculation, fixed] : call.arguments) {
        put(*parameter, calculation ? session_.evaluate(*calculation).convertedTo(parameter->type)
                                    : Value::number(fixed));
    }
    try {
        Value result = call.step->run(session_, values);
        listener_.evaluated(script, step, result);
        if (!call.target.empty() && session_.lastError() == 0) {
            session_.setVariable(call.target, std::move(result));
        }
    } catch (const ExternalFailure& failure) {
        failStep(std::string(" failed: ") + failure.what());
    }
}

void ScriptRunner::fail(const Script& script, const Calculation& calculation, std::string message) const {
    throw CalcError(ErrorKind::evaluation, CalcCode::generic, script.source, calculation.root.begin,
                    std::move(message));
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
