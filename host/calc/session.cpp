#include "host/calc/session.h"

#include "host/calc/evaluator.h"
#include "host/calc/parser.h"

#include <algorithm>

namespace host {

Session::Session() {
    frames_.emplace_back();
}

Value Session::evaluate(const Calculation& calculation) {
    const TimedWork work(*this);
    return Evaluator(*this, calculation).run();
}

Value Session::evaluate(std::u16string text) {
    return evaluate(parseCalculation(std::make_shared<Source>("", std::move(text)), functions_));
}

void Session::assign(const Calculation& variable, Value value) {
    setVariable(Evaluator(*this, variable).keyOf(std::get<Variable>(variable.root.form)), std::move(value));
}

std::u16string repetitionKey(const std::u16string& key, int64_t repetition) {
    if (repetition <= 1) {
        return key;
    }
    const std::string number = std::to_string(repetition);
    return key + u"[" + std::u16string(number.begin(), number.end()) + u"]";
}

const Session::Variables& Session::scopeOf(const std::u16string& key) const {
    return key.starts_with(u"$$") ? globals_ : frames_.back().locals;
}

const Value* Session::variable(const std::u16string& key) const {
    const Variables& scope = scopeOf(key);
    const auto found = scope.find(key);
    return found == scope.end() ? nullptr : &found->second;
}

void Session::setVariable(const std::u16string& key, Value value) {
    const_cast<Variables&>(scopeOf(key)).insert_or_assign(key, std::move(value));
}

Value Session::takeVariable(const std::u16string& key) {
    auto& scope = const_cast<Variables&>(scopeOf(key));
    const auto found = scope.find(key);
    return found == scope.end() ? Value() : std::exchange(found->second, {});
}

std::vector<Value> Session::repetitions(const std::u16string& key) const {
    std::vector<Value> result;
    const std::u16string prefix = key + u"[";
    const auto put = [&result](size_t place, const Value& value) {
        result.resize(std::max(result.size(), place));
        result[place - 1] = value;
    };
    for (const auto& [name, value] : scopeOf(key)) {
        if (name == key) {
            put(1, value);
        } else if (name.starts_with(prefix)) {
            put(static_cast<size_t>(Number::fromText(name.substr(prefix.size())).toInt64()), value);
        }
    }
    return result;
}

TimedWork::TimedWork(Session& session) : session_(session) {
    if (++session.works_ == 1) {
        using Clock = std::chrono::steady_clock;
        session.deadline_ =
            session.timeLimit_.count() == 0 ? Clock::time_point::max() : Clock::now() + session.timeLimit_;
    }
}

std::map<std::u16string, Value> Session::variables() const {
    std::map<std::u16string, Value> all(globals_.begin(), globals_.end());
    all.insert(frames_.back().locals.begin(), frames_.back().locals.end());
    return all;
}

ScriptFrame::ScriptFrame(Session& session, std::u16string name, Value parameter) : session_(session) {
    session_.frames_.push_back({{}, std::move(name), std::move(parameter), {}});
}

ScriptFrame::~ScriptFrame() {
    session_.frames_.pop_back();
}

} // namespace host
