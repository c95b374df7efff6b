#include "host/script/step_context.h"

#include "host/script/script_runner.h"
#include "host/values/text.h"

namespace host {

namespace fs = std::filesystem;

Session& StepContext::session() const {
    return runner_.session_;
}

DataFiles& StepContext::dataFiles() const {
    return runner_.dataFiles_;
}

ErrorLog& StepContext::errorLog() const {
    return runner_.errorLog_;
}

Value StepContext::value(size_t place) const {
    const std::optional<Calculation>& calculation = step_.arguments[place].value;
    return calculation ? session().evaluate(*calculation) : Value();
}

int StepContext::number(size_t place, int standard) const {
    return isGiven(place) ? step_.arguments[place].number : standard;
}

fs::path StepContext::path(size_t place) const {
    constexpr std::string_view kKinds[] = {"file:", "image:", "movie:", "filelinux:", "imagelinux:"};
    std::string path = toUtf8(text(place));
    for (const std::string_view kind : kKinds) {
        if (path.starts_with(kind)) {
            path.erase(0, kind.size());
            break;
        }
    }
    if (path.empty()) {
        fail(kDataMissing, "the path is empty", place);
    }
    return fileBeside(path);
}

fs::path StepContext::fileBeside(const std::string& name) const {
    return fs::path(script_.source->name()).parent_path() / name;
}

void StepContext::requireTime() const {
    runner_.requireTime(script_, step_);
}

void StepContext::assign(size_t place, Value value) const {
    if (const std::optional<Calculation>& variable = step_.arguments[place].value) {
        session().assign(*variable, std::move(value));
    }
}

void StepContext::trace(const Value& value) const {
    runner_.listener_.evaluated(script_, step_, value);
}

std::optional<fs::path> StepContext::script(size_t place) const {
    const StepArgument& argument = step_.arguments[place];
    return runner_.library_.find(argument.file, argument.value ? text(place) : argument.script);
}

Value StepContext::perform(const fs::path& file, Value parameter) const {
    if (!runner_.canRun()) {
        throw CalcError(ErrorKind::evaluation, CalcCode::generic, script_.source, step_.begin,
                        "scripts perform each other too deeply: at most " + std::to_string(kMaxScriptDepth) +
                            " levels");
    }
    return runner_.run(file, std::move(parameter));
}

void StepContext::installTimer(const fs::path& file, Value parameter,
                               std::chrono::duration<double> interval) const {
    runner_.timer_ = TimerScript{{file, std::move(parameter)}, interval, {}};
    runner_.timer_->next = std::chrono::steady_clock::now() +
                           std::chrono::duration_cast<std::chrono::steady_clock::duration>(interval);
}

void StepContext::removeTimer() const {
    runner_.timer_.reset();
}

void StepContext::showDialog(const Value& title, const Value& message) const {
    runner_.listener_.dialog(title, message);
}

void StepContext::pause(std::chrono::duration<double> time) const {
    runner_.listener_.paused(time);
    requireTime();
}

void StepContext::beep() const {
    runner_.listener_.beep();
}

void StepContext::fail(int code, const std::string& message, size_t place) const {
    const std::optional<Calculation>& calculation = step_.arguments[place].value;
    throw StepFailure(code, message, calculation ? calculation->root.begin : step_.begin);
}

} // namespace host
