// Reading order: where definitions begin, their headings, their bodies. All headings are read first, so that
// a body may call functions that are defined after it.
#include "host/calc/custom_functions.h"

#include "host/calc/builtins.h"
#include "host/calc/constants.h"
#include "host/calc/evaluator.h"
#include "host/calc/parser.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

std::u16string prototypeOf(const std::u16string& name, const std::vector<std::u16string>& parameters) {
    std::u16string result = name;
    const char16_t* separator = u" ( ";
    for (const std::u16string& parameter : parameters) {
        result += separator + parameter;
        separator = u" ; ";
    }
    return parameters.empty() ? result : result + u" )";
}

// Whether an operand can end with that token, so that no other one can follow.
bool endsOperand(TokenKind kind) {
    return kind == TokenKind::number || kind == TokenKind::text || kind == TokenKind::identifier ||
           kind == TokenKind::variable || kind == TokenKind::rightParen || kind == TokenKind::rightBracket;
}

// The offsets of the names with which definitions begin: in a calculation a name never follows an operand. A
// text that is not closed ends the search.
std::vector<size_t> definitionStarts(const SourcePtr& source) {
    std::vector<size_t> starts;
    try {
        Lexer lexer(source, 0);
        bool isStart = true;
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            if (token.kind == TokenKind::identifier && isStart) {
                starts.push_back(token.begin);
            } else if (starts.empty()) {
                starts.push_back(token.begin);
            }
            isStart = endsOperand(token.kind);
        }
    } catch (const CalcError&) { // reported when the definition is read
        if (starts.empty()) {
            starts.push_back(0);
        }
    }
    return starts;
}

bool isTaken(const std::u16string& key) {
    return findBuiltin(key) != nullptr || findConstant(key) != nullptr;
}

} // namespace

struct CustomFunctions::Definition {
    CustomFunctionPtr function;
    size_t body; // where its calculation begins
    size_t end;  // where the next definition begins
};

CustomFunction::CustomFunction(const std::u16string& name, std::vector<std::u16string> parameters,
                               SourcePtr source, size_t begin)
    : ExternalFunction(name, prototypeOf(name, parameters), static_cast<int>(parameters.size()),
                       static_cast<int>(parameters.size())),
      parameters_(std::move(parameters)), source_(std::move(source)), begin_(begin) {}

Value CustomFunction::call(Session& session, std::span<Value> arguments) {
    return callFunction(session, *this, {arguments.begin(), arguments.end()});
}

void CustomFunctions::clear(FunctionRegistry* registry) {
    for (const auto& [key, function] : functions_) {
        if (registry != nullptr) {
            registry->remove(function);
        }
        function->body_.reset(); // the body may refer to the function itself
    }
    functions_.clear();
}

std::vector<CustomFunctions::Definition> CustomFunctions::readHeadings(const SourcePtr& source,
                                                                       FunctionRegistry& registry,
                                                                       std::vector<CalcError>& errors) {
    std::vector<Definition> result;
    const std::vector<size_t> starts = definitionStarts(source);
    for (size_t i = 0; i < starts.size(); ++i) {
        const size_t end = i + 1 < starts.size() ? starts[i + 1] : source->text().size();
        try {
            Parser in(source, starts[i], registry);
            const Token name = in.current();
            if (!in.accept(TokenKind::identifier)) {
                in.failExpected("a definition: Name ( parameter ; ... ) = calculation",
                                CalcCode::nameMissing);
            }
            const std::u16string key = foldName(name.text);
            if (isTaken(key)) {
                in.fail(name.begin, CalcCode::nameTaken,
                        "the language has a " + toUtf8(name.text) + " already");
            }
            std::vector<std::u16string> parameters;
            if (in.accept(TokenKind::leftParen) && !in.accept(TokenKind::rightParen)) {
                do {
                    const Token parameter = in.current();
                    if (!in.accept(TokenKind::identifier)) {
                        in.failExpected("the name of a parameter", CalcCode::nameMissing);
                    }
                    if (isTaken(foldName(parameter.text))) {
                        in.fail(parameter.begin, CalcCode::parameterNamedLikeFunction,
                                toUtf8(parameter.text) + " is a name of the language; expected another one");
                    }
                    if (std::any_of(parameters.begin(), parameters.end(), [&](const std::u16string& other) {
                            return foldName(other) == foldName(parameter.text);
                        })) {
                        in.fail(parameter.begin, CalcCode::definedTwice,
                                "there is a parameter called " + toUtf8(parameter.text) + " already");
                    }
                    parameters.push_back(parameter.text);
                } while (in.accept(TokenKind::semicolon));
                in.expect(TokenKind::rightParen, "\";\" or \")\" after a parameter");
            }
            const Token& equals = in.current();
            if (equals.kind != TokenKind::symbol || equals.op->meaning != Operator::equal) {
                in.failExpected("\"=\" before the calculation of " + toUtf8(name.text),
                                CalcCode::operatorOrFunctionExpected);
            }
            const size_t body = equals.end;
            auto function =
                std::make_shared<CustomFunction>(name.text, std::move(parameters), source, name.begin);
            if (!registry.add(function)) {
                in.fail(name.begin, CalcCode::nameTaken,
                        "there is a function called " + toUtf8(name.text) + " already");
            }
            functions_.emplace(key, function);
            result.push_back({std::move(function), body, end});
        } catch (const CalcError& error) {
            errors.push_back(error);
        }
    }
    return result;
}

void CustomFunctions::load(const std::vector<SourcePtr>& sources, FunctionRegistry& registry,
                           std::vector<CalcError>& errors) {
    clear(&registry);
    std::vector<Definition> definitions;
    for (const SourcePtr& source : sources) {
        auto read = readHeadings(source, registry, errors);
        std::move(read.begin(), read.end(), std::back_inserter(definitions));
    }
    for (const Definition& definition : definitions) {
        CustomFunction& function = *definition.function;
        try {
            Parser in(function.source(), definition.body, registry);
            Calculation body = in.calculation(function.parameters());
            const Token& next = in.current();
            if (next.kind != TokenKind::end && next.begin != definition.end) {
                in.failExpected("an operator or the next definition", CalcCode::operatorOrFunctionExpected);
            }
            function.body_ = std::move(body);
        } catch (const CalcError& error) {
            errors.push_back(error);
            functions_.erase(foldName(function.name()));
            registry.remove(definition.function);
        }
    }
}

} // namespace host
