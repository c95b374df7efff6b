#include "host/calc/session.h"

#include "host/calc/evaluator.h"
#include "host/calc/parser.h"

namespace host {

Session::Session() {
    frames_.emplace_back();
}

Value Session::evaluate(const Calculation& calculation) {
    return Evaluator(*this, calculation).run();
}

Value Session::evaluate(std::u16string text) {
    return evaluate(parseCalculation(std::make_shared<Source>("", std::move(text)), functions_));
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

ScriptFrame::ScriptFrame(Session& session, std::u16string name, Value parameter) : session_(session) {
    session_.frames_.push_back({{}, std::move(name), std::move(parameter), {}});
}

ScriptFrame::~ScriptFrame() {
    session_.frames_.pop_back();
}

} // namespace host
