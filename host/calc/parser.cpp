// Reading order: the rules from the outside in (calculation, expression, operand, primary), then names and
// calls, then the forms with a syntax of their own, then errors.
#include "host/calc/parser.h"

#include "host/calc/builtins.h"
#include "host/calc/constants.h"
#include "host/calc/suggest.h"
#include "host/values/depth.h"
#include "host/values/text.h"

#include <algorithm>
#include <optional>

namespace host {

namespace {

constexpr std::string_view kValueWanted =
    "a value (a number, a text in quotes, a variable, a function or \"(\")";

NodePtr box(Node node) {
    return std::make_unique<Node>(std::move(node));
}

std::string countText(int count) {
    return std::to_string(count) + (count == 1 ? " argument" : " arguments");
}

std::string rangeText(int minArguments, int maxArguments) {
    if (maxArguments == ExternalFunction::kAnyNumber) {
        return "at least " + countText(minArguments);
    }
    if (minArguments == maxArguments) {
        return minArguments == 0 ? "no arguments" : countText(minArguments);
    }
    return std::to_string(minArguments) + " to " + std::to_string(maxArguments) + " arguments";
}

// Returns the first argument or operand of a value that is of a form; null when there is none. Functions evaluate
// an argument once at most, so that a value like List ( x ; 1 ) or x & "a" reads x once.
template <class Form>
Form* firstOperand(Node& value) {
    if (auto* call = std::get_if<BuiltinCall>(&value.form)) {
        return call->arguments.empty() ? nullptr : std::get_if<Form>(&call->arguments.front().form);
    }
    auto* chain = std::get_if<Chain>(&value.form);
    return chain == nullptr ? nullptr : std::get_if<Form>(&chain->first->form);
}

} // namespace

Calculation parseCalculation(const SourcePtr& source, const FunctionRegistry& functions) {
    Parser parser(source, 0, functions);
    Calculation result = parser.calculation();
    if (parser.current().kind != TokenKind::end) {
        parser.failExpected("an operator or the end of the calculation",
                            CalcCode::operatorOrFunctionExpected);
    }
    return result;
}

bool isBlankCalculation(const SourcePtr& source) {
    return Lexer(source, 0).next().kind == TokenKind::end;
}

Parser::Parser(SourcePtr source, size_t offset, const FunctionRegistry& functions)
    : lexer_(std::move(source), offset), functions_(functions), token_(lexer_.next()) {}

void Parser::continueAt(size_t offset) {
    lexer_ = Lexer(source(), offset);
    advance();
}

Calculation Parser::calculation(std::span<const std::u16string> parameters) {
    leave(0);
    uses_.clear();
    slots_ = 0;
    for (const std::u16string& parameter : parameters) {
        define(foldName(parameter), 0);
    }
    Calculation result{source(), {}, 0};
    result.root = expression();
    result.slots = slots_;
    return result;
}

Calculation Parser::calculationFor(const Variable& target) {
    leave(0);
    uses_.clear();
    slots_ = 0;
    Calculation result{source(), newValue(target), 0};
    result.slots = slots_;
    return result;
}

Calculation Parser::variableCalculation() {
    if (token_.kind != TokenKind::variable) {
        failExpected("a $local or $$global variable", CalcCode::nameMissing);
    }
    leave(0);
    uses_.clear();
    slots_ = 0;
    Calculation result{source(), {}, 0};
    const size_t begin = token_.begin;
    result.root = Node{begin, variable()};
    result.slots = slots_;
    return result;
}

// Parses binary operators of [minimumLevel] and above. The right operand is parsed one level up, so that the
// next operator is of the same level, and continues the chain, or of a lower one.
Node Parser::expression(int minimumLevel) {
    Node left = operand();
    while (token_.kind == TokenKind::symbol && token_.op->level >= minimumLevel) {
        const int chainLevel = token_.op->level;
        const size_t begin = left.begin;
        Chain chain{box(std::move(left)), {}};
        while (token_.kind == TokenKind::symbol && token_.op->level == chainLevel) {
            const Operator op = token_.op->meaning;
            advance();
            chain.rest.push_back({op, expression(chainLevel + 1)});
        }
        left = Node{begin, std::move(chain)};
    }
    return left;
}

// Parses a sign, which binds weaker than ^ and stronger than *; or `not`, which binds strongest of all.
Node Parser::operand() {
    const DepthGuard level(depth_);
    if (depth_ > kMaxNesting) {
        fail(token_.begin, CalcCode::generic,
             "this calculation is nested too deeply: at most " + std::to_string(kMaxNesting) + " levels");
    }
    const bool isSign = token_.kind == TokenKind::symbol &&
                        (token_.op->meaning == Operator::subtract || token_.op->meaning == Operator::add ||
                         token_.op->meaning == Operator::logicalNot);
    if (!isSign) {
        return primary();
    }
    const size_t begin = token_.begin;
    const Operator op = token_.op->meaning;
    advance();
    return Node{begin, Unary{op, box(op == Operator::logicalNot ? operand() : expression(level::kPower))}};
}

Node Parser::primary() {
    const size_t begin = token_.begin;
    switch (token_.kind) {
    case TokenKind::text:
    case TokenKind::number:
        return textOrNumber();
    case TokenKind::variable:
        return Node{begin, variable()};
    case TokenKind::identifier:
        return named();
    case TokenKind::leftParen: {
        advance();
        Node inner = expression();
        expect(TokenKind::rightParen, "an operator or \")\"");
        return inner;
    }
    case TokenKind::leftBracket:
        fail(begin, CalcCode::listNotAllowed,
             "a list in brackets is not allowed here; expected " + std::string(kValueWanted));
    default:
        failExpected(kValueWanted, CalcCode::valueExpected);
    }
}

Variable Parser::variable() {
    Variable result{foldName(token_.text), nullptr};
    ++variableUses_[result.key];
    advance();
    if (accept(TokenKind::leftBracket)) {
        result.repetition = box(expression());
        expect(TokenKind::rightBracket, "an operator or the \"]\" of the repetition");
    }
    return result;
}

Node Parser::textOrNumber() {
    const Token token = std::move(token_);
    advance();
    if (token.kind == TokenKind::text) {
        return Node{token.begin, Literal{Value::text(token.text)}};
    }
    try {
        return Node{token.begin, Literal{Value::number(Number::fromText(token.text))}};
    } catch (const NumberError& error) {
        fail(token.begin, CalcCode::badNumber, std::string("this number can not be kept: ") + error.what());
    }
}

// Parses a name, which is looked up in this calculation, then in the language, then among plug-in functions.
Node Parser::named() {
    const Token token = std::move(token_);
    advance();
    const std::u16string key = foldName(token.text);
    if (token_.kind != TokenKind::leftParen) {
        if (const auto slot = slotOf(key, 0)) {
            ++uses_[*slot];
            return Node{token.begin, Slot{*slot}};
        }
        if (const Constant* constant = findConstant(key)) {
            return Node{token.begin, Literal{Value::number(constant->value)}};
        }
    }
    if (const Builtin* builtin = findBuiltin(key)) {
        switch (builtin->form) {
        case BuiltinForm::let:
            return letForm(token.begin);
        case BuiltinForm::loop:
            return whileForm(token.begin);
        case BuiltinForm::get:
            return getForm(token.begin);
        case BuiltinForm::eager:
        case BuiltinForm::lazy:
        case BuiltinForm::branch:
        case BuiltinForm::placeholder:
        case BuiltinForm::refused:
            return call(*builtin, token.begin);
        }
    }
    if (const ExternalFunctionPtr function = functions_.find(key)) {
        return call(function, token.begin);
    }
    if (token_.kind == TokenKind::colon) {
        fail(token.begin, CalcCode::tableMissing,
             "\"" + toUtf8(token.text) + "\" reads like a field: there are no tables here, use a $variable");
    }
    const bool isCall = token_.kind == TokenKind::leftParen;
    fail(token.begin, isCall ? CalcCode::operatorOrFunctionExpected : CalcCode::fieldMissing,
         std::string(isCall ? "there is no function called " : "there is no function or variable called ") +
             toUtf8(token.text) + suggestion(token.text));
}

Node Parser::call(const Builtin& function, size_t begin) {
    std::vector<Node> given = arguments(function.name(), !function.listPrototype.empty());
    const bool inLists = given.size() > 1 && std::holds_alternative<Brackets>(given[1].form);
    if (inLists) {
        checkLists(function, given);
    } else {
        checkCount(function.name(), function.prototype, function.minArguments(), function.maxArguments(),
                   given.size(), begin);
    }
    if (function.refusal != CalcCode::none) {
        checkField(function, given, begin);
    }
    opaqueCalls_ += function.name() == u"Evaluate" ? 1 : 0;
    return Node{begin, BuiltinCall{&function, std::move(given)}};
}

Node Parser::call(const ExternalFunctionPtr& function, size_t begin) {
    std::vector<Node> given = arguments(function->name(), false);
    checkCount(function->name(), function->prototype(), function->minArguments(), function->maxArguments(),
               given.size(), begin);
    ++opaqueCalls_;
    return Node{begin, ExternalCall{foldName(function->name()), function, std::move(given)}};
}

// Parses the arguments in parentheses; a call without parentheses has none.
std::vector<Node> Parser::arguments(std::u16string_view function, bool allowBrackets) {
    std::vector<Node> result;
    if (!accept(TokenKind::leftParen) || accept(TokenKind::rightParen)) {
        return result;
    }
    do {
        const bool bracketed = allowBrackets && token_.kind == TokenKind::leftBracket;
        result.push_back(bracketed ? brackets() : expression());
    } while (accept(TokenKind::semicolon));
    expect(TokenKind::rightParen, "an operator, \";\" or the \")\" of " + toUtf8(function));
    return result;
}

Node Parser::brackets() {
    const size_t begin = token_.begin;
    advance();
    Brackets result;
    do {
        result.items.push_back(expression());
    } while (accept(TokenKind::semicolon));
    expect(TokenKind::rightBracket, "an operator, \";\" or \"]\"");
    return Node{begin, std::move(result)};
}

// Checks a call with arguments in brackets: all arguments after the first are then lists. If the function
// requires several arguments after the first, each list must have that many.
void Parser::checkLists(const Builtin& function, const std::vector<Node>& given) const {
    const auto items = static_cast<size_t>(std::max(function.minArguments() - 1, 0));
    for (const Node& node : given) {
        const auto* list = std::get_if<Brackets>(&node.form);
        const bool isFirst = &node == &given.front();
        if ((list == nullptr) != isFirst || (list != nullptr && items > 0 && list->items.size() != items)) {
            fail(node.begin, CalcCode::listNotAllowed,
                 toUtf8(function.name()) + " takes its arguments one by one or in lists: " +
                     toUtf8(function.prototype) + " or " + toUtf8(function.listPrototype));
        }
    }
}

// Refuses a function that needs a field, unless it accepts a variable and gets one.
void Parser::checkField(const Builtin& function, const std::vector<Node>& given, size_t begin) const {
    const bool takesVariable = function.form == BuiltinForm::lazy;
    if (takesVariable && std::holds_alternative<Variable>(given.front().form)) {
        return;
    }
    fail(given.empty() ? begin : given.front().begin, function.refusal,
         toUtf8(function.name()) +
             (takesVariable ? " needs a field or a $variable"
                            : " needs a field, and there are no tables here") +
             ": " + toUtf8(function.prototype));
}

void Parser::openCall(std::u16string_view function) {
    expect(TokenKind::leftParen, "\"(\" after " + toUtf8(function));
}

Node Parser::letForm(size_t begin) {
    openCall(u"Let");
    const size_t scope = names_.size();
    Let let;
    let.assignments = assignments(scope);
    expect(TokenKind::semicolon, "an operator or \";\" before the result of Let");
    let.result = box(expression());
    expect(TokenKind::rightParen, "an operator or the \")\" of Let");
    leave(scope);
    return Node{begin, std::move(let)};
}

Node Parser::whileForm(size_t begin) {
    openCall(u"While");
    const size_t scope = names_.size();
    While loop;
    loop.start = assignments(scope);
    expect(TokenKind::semicolon, "an operator or \";\" before the condition of While");
    loop.condition = box(expression());
    expect(TokenKind::semicolon, "an operator or \";\" before the logic of While");
    loop.logic = assignments(scope);
    expect(TokenKind::semicolon, "an operator or \";\" before the result of While");
    loop.result = box(expression());
    expect(TokenKind::rightParen, "an operator or the \")\" of While");
    leave(scope);
    return Node{begin, std::move(loop)};
}

Node Parser::getForm(size_t begin) {
    openCall(u"Get");
    if (token_.kind != TokenKind::identifier) {
        failExpected("the name of what to get, for instance LastError", CalcCode::badGetArgument);
    }
    const GetRow* row = findGet(foldName(token_.text));
    if (row == nullptr) {
        Suggestion nearest(token_.text);
        for (const GetRow& candidate : getRows()) {
            nearest.consider(candidate.name);
        }
        fail(token_.begin, CalcCode::badGetArgument,
             "Get knows no " + toUtf8(token_.text) + nearest.question());
    }
    advance();
    expect(TokenKind::rightParen, "the \")\" of Get");
    return Node{begin, Get{row}};
}

// Parses one assignment, or any number of them in brackets.
std::vector<Assignment> Parser::assignments(size_t scope) {
    std::vector<Assignment> result;
    if (!accept(TokenKind::leftBracket)) {
        result.push_back(assignment(scope));
        return result;
    }
    if (accept(TokenKind::rightBracket)) {
        return result;
    }
    do {
        result.push_back(assignment(scope));
    } while (accept(TokenKind::semicolon));
    expect(TokenKind::rightBracket, "an operator, \";\" or \"]\"");
    return result;
}

Assignment Parser::assignment(size_t scope) {
    if (token_.kind != TokenKind::identifier && token_.kind != TokenKind::variable) {
        failExpected("the name of a variable", CalcCode::nameMissing);
    }
    std::u16string key = foldName(token_.text);
    std::optional<Variable> target;
    if (token_.kind == TokenKind::variable) {
        target = variable();
    } else {
        advance();
    }
    if (token_.kind != TokenKind::symbol || token_.op->meaning != Operator::equal) {
        failExpected("\"=\" after the name of a variable", CalcCode::operatorOrFunctionExpected);
    }
    advance();
    const std::optional<uint32_t> own = target ? std::nullopt : slotOf(key, scope);
    if (target) {
        Node value = newValue(*target);
        return {std::move(*target), std::move(value)};
    }
    const uint32_t usesBefore = own ? uses_[*own] : 0;
    Node value = expression(); // parsed before the name is known: it may use an outer one of the same name
    auto* use = own && uses_[*own] == usesBefore + 1 ? firstOperand<Slot>(value) : nullptr;
    if (use != nullptr && use->index == *own) {
        use->isLast = true;
    }
    return {Slot{define(std::move(key), scope)}, std::move(value)};
}

// Parses the new value of a $variable. It is the last to read the old one when it begins with it, reads it once,
// and calls nothing that could read it.
Node Parser::newValue(const Variable& target) {
    const uint32_t usesBefore = variableUses_[target.key];
    const uint32_t callsBefore = opaqueCalls_;
    Node value = expression();
    const bool isOnlyUse = variableUses_[target.key] == usesBefore + 1 && opaqueCalls_ == callsBefore;
    auto* use = isOnlyUse && target.repetition == nullptr ? firstOperand<Variable>(value) : nullptr;
    if (use != nullptr && use->key == target.key && use->repetition == nullptr) {
        use->isLast = true;
    }
    return value;
}

// Returns the slot of a name in the form whose names start at [scope]; nothing when it has no such name yet.
std::optional<uint32_t> Parser::slotOf(std::u16string_view key, size_t scope) const {
    const auto found = places_.find(std::u16string(key));
    const bool isKnown = found != places_.end() && !found->second.empty() && found->second.back() >= scope;
    return isKnown ? std::optional(names_[found->second.back()].slot) : std::nullopt;
}

// Returns the slot of a name in the form whose names start at [scope]; a new one when it has no such name
// yet.
uint32_t Parser::define(std::u16string key, size_t scope) {
    if (const auto known = slotOf(key, scope)) {
        return *known;
    }
    places_[key].push_back(names_.size());
    names_.push_back({std::move(key), slots_});
    uses_.push_back(0);
    return slots_++;
}

// Forgets the names of the form whose names start at [scope].
void Parser::leave(size_t scope) {
    for (; names_.size() > scope; names_.pop_back()) {
        places_[names_.back().key].pop_back();
    }
}

bool Parser::accept(TokenKind kind) {
    if (token_.kind != kind) {
        return false;
    }
    advance();
    return true;
}

void Parser::expect(TokenKind kind, std::string_view what) {
    if (!accept(kind)) {
        const bool unbalanced = kind == TokenKind::rightParen || kind == TokenKind::rightBracket;
        failExpected(what,
                     unbalanced ? CalcCode::unbalancedParenthesis : CalcCode::operatorOrFunctionExpected);
    }
}

bool Parser::acceptWord(std::u16string_view word) {
    if (token_.kind != TokenKind::identifier || foldName(token_.text) != word) {
        return false;
    }
    advance();
    return true;
}

void Parser::checkCount(std::u16string_view name, std::u16string_view prototype, int minArguments,
                        int maxArguments, size_t given, size_t begin) const {
    const bool tooFew = static_cast<int>(given) < minArguments;
    if (!tooFew &&
        (maxArguments == ExternalFunction::kAnyNumber || static_cast<int>(given) <= maxArguments)) {
        return;
    }
    fail(begin, tooFew ? CalcCode::tooFewArguments : CalcCode::tooManyArguments,
         toUtf8(name) + " takes " + rangeText(minArguments, maxArguments) + ", " + std::to_string(given) +
             " given: " + toUtf8(prototype));
}

std::string Parser::suggestion(std::u16string_view name) const {
    Suggestion nearest(name);
    for (const ScopedName& known : names_) {
        nearest.consider(known.key);
    }
    for (const Builtin& builtin : builtins()) {
        nearest.consider(builtin.name());
    }
    for (const auto& [key, function] : functions_.all()) {
        nearest.consider(function->name());
    }
    return nearest.question();
}

std::string Parser::describe(const Token& token) const {
    constexpr size_t kShown = 40;
    const std::u16string_view text = source()->text().substr(token.begin, token.end - token.begin);
    return text.size() <= kShown ? toUtf8(text) : toUtf8(text.substr(0, kShown)) + "\u2026";
}

void Parser::failExpected(std::string_view what, CalcCode code) const {
    const std::string expected = "expected " + std::string(what);
    if (token_.kind == TokenKind::end) {
        throw CalcError(ErrorKind::incomplete, code, source(), token_.begin, expected + ", found the end");
    }
    fail(token_.begin, code, expected + ", found " + describe(token_));
}

void Parser::fail(size_t offset, CalcCode code, std::string message) const {
    throw CalcError(parseErrorKind(code), code, source(), offset, std::move(message));
}

} // namespace host
