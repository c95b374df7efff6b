#pragma once

// The rows of the tables of functions. A row is the only source of a function's name, prototype, description
// and category for the parser, `fmhost functions`, the prompt's help and editors. The numbers of arguments
// are derived from the prototype.

#include "host/calc/calc_error.h"
#include "host/values/value.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace host {

class Evaluator;
class Session;
struct Node;

// How a call is read and run.
enum class BuiltinForm : uint8_t {
    eager,       // all arguments are evaluated, then the function runs
    branch,      // the function chooses the argument whose value is the result
    lazy,        // the function evaluates the arguments that it needs
    placeholder, // always returns the same value, as what it is about does not exist in this host
    refused,     // needs a field: the parser refuses it with an error code
    let,         // let, loop and get: Let, While and Get, which have a syntax of their own
    loop,
    get,
};

using EagerFunction = Value (*)(Session&, std::span<const Value>);
using OwningFunction = Value (*)(Session&, std::vector<Value>); // may take the arguments apart
// Returns the argument whose value is the answer; null when the answer is empty.
using BranchFunction = const Node* (*)(Evaluator&, std::span<const Node>);
using LazyFunction = Value (*)(Evaluator&, std::span<const Node>);

// A value that never changes: a text, which becomes a number when it is one, and an invalid value when it is
// "?".
struct Fixed {
    std::u16string_view answer;

    Value value() const;
};

// The value of a function in a host that has no file, record, layout, window or network, and the error that
// EvaluationError tells of it.
struct Placeholder : Fixed {
    CalcCode code = CalcCode::none;
};

// The error for a function that FileMaker refuses unless its argument is a field.
struct Refused {
    CalcCode code;
};

// The row of a function of the language.
struct Builtin {
    std::u16string_view prototype;     // Name ( required ; required {; optional } ), "..." for any number
    std::u16string_view listPrototype; // a second form with arguments in brackets; empty when there is none
    std::string_view description;      // one sentence
    std::string_view category;         // set from the FunctionGroup of the row
    BuiltinForm form = BuiltinForm::eager;
    EagerFunction eager = nullptr;
    OwningFunction owning = nullptr; // in place of eager
    BranchFunction branch = nullptr;
    LazyFunction lazy = nullptr;
    Placeholder placeholder{};
    CalcCode refusal = CalcCode::none; // the error of a function that needs a field

    constexpr Builtin(std::u16string_view text, EagerFunction function, std::string_view sentence,
                      std::u16string_view withLists = {})
        : prototype(text), listPrototype(withLists), description(sentence), eager(function) {}
    constexpr Builtin(std::u16string_view text, OwningFunction function, std::string_view sentence)
        : prototype(text), description(sentence), owning(function) {}
    constexpr Builtin(std::u16string_view text, BranchFunction function, std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::branch), branch(function) {}
    constexpr Builtin(std::u16string_view text, LazyFunction function, std::string_view sentence,
                      std::u16string_view withLists = {})
        : prototype(text), listPrototype(withLists), description(sentence), form(BuiltinForm::lazy),
          lazy(function) {}
    constexpr Builtin(std::u16string_view text, Placeholder standIn, std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::placeholder), placeholder(standIn) {}
    constexpr Builtin(std::u16string_view text, Refused error, std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::refused), refusal(error.code) {}
    // A function that needs a field, but also takes a $variable; it is refused for anything else.
    constexpr Builtin(std::u16string_view text, Refused error, LazyFunction function,
                      std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::lazy), lazy(function),
          refusal(error.code) {}
    constexpr Builtin(std::u16string_view text, BuiltinForm special, std::string_view sentence)
        : prototype(text), description(sentence), form(special) {}

    constexpr std::u16string_view name() const { return prototype.substr(0, prototype.find(u' ')); }
    constexpr int minArguments() const { return count(prototype.substr(0, prototype.find(u'{'))); }
    constexpr int maxArguments() const {
        return prototype.find(u"...") != std::u16string_view::npos ? -1 : count(prototype); // -1: any number
    }

  private:
    // Returns the number of arguments in [text]: separators outside square brackets, plus one.
    static constexpr int count(std::u16string_view text) {
        const size_t open = text.find(u'(');
        if (open == std::u16string_view::npos) {
            return 0;
        }
        int separators = 0;
        int depth = 0;
        bool any = false;
        for (const char16_t c : text.substr(open + 1)) {
            depth += c == u'[' ? 1 : c == u']' ? -1 : 0;
            separators += c == u';' && depth == 0 ? 1 : 0;
            any = any || (c != u' ' && c != u')' && c != u'{' && c != u'}');
        }
        return any ? separators + 1 : 0;
    }
};

// The row of a name in Get ( Name ).
struct GetRow {
    std::u16string_view name;
    std::string_view description; // one sentence
    Value (*function)(Session&) = nullptr;
    Fixed fixed{};         // the value when there is no function
    bool isAbsent = false; // the value is that of a host that lacks what it is about

    constexpr GetRow(std::u16string_view text, Value (*read)(Session&), std::string_view sentence)
        : name(text), description(sentence), function(read) {}
    constexpr GetRow(std::u16string_view text, Fixed value, std::string_view sentence)
        : name(text), description(sentence), fixed(value) {}
    constexpr GetRow(std::u16string_view text, Placeholder standIn, std::string_view sentence)
        : name(text), description(sentence), fixed(standIn), isAbsent(true) {}

    Value value(Session& session) const { return function != nullptr ? function(session) : fixed.value(); }
};

} // namespace host
