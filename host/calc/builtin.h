#pragma once

// What a row of the table of functions says: the single source of a function's name, prototype, description
// and category for the parser, `fmhost functions`, the prompt's help and editors. How many arguments a
// function takes is derived from its prototype.

#include "host/calc/calc_error.h"
#include "host/values/value.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace host {

class Evaluator;
class Session;
struct Node;

// How a call is read and run.
enum class BuiltinForm : uint8_t {
    eager,       // all arguments are evaluated, then the function runs
    lazy,        // the function evaluates the arguments that it needs
    placeholder, // answers the same whatever the arguments: what it asks about does not exist here
    refused,     // needs a field: the parser refuses it with an error code
    let,         // Let, While and Get have a syntax of their own
    loop,
    get,
};

using EagerFunction = Value (*)(Session&, std::span<const Value>);
using LazyFunction = Value (*)(Evaluator&, std::span<const Node>);

// What a function answers in a host that has no file, record, layout, window or network: a text, a number
// when it is one, "?" for the error result.
struct Placeholder {
    std::u16string_view answer;

    Value value() const;
};

// The error of a function that FileMaker refuses unless it is given a field.
struct Refused {
    CalcCode code;
};

struct Builtin {
    std::u16string_view prototype;     // Name ( needed ; needed {; optional } ), "..." for any number
    std::u16string_view listPrototype; // where arguments may come in brackets; else empty
    std::string_view description;      // one sentence
    std::string_view category;         // filled in by the table that the row stands in
    BuiltinForm form = BuiltinForm::eager;
    EagerFunction eager = nullptr;
    LazyFunction lazy = nullptr;
    Placeholder placeholder{};
    CalcCode refusal = CalcCode::none; // of a function of fields

    constexpr Builtin(std::u16string_view text, EagerFunction function, std::string_view sentence,
                      std::u16string_view withLists = {})
        : prototype(text), listPrototype(withLists), description(sentence), eager(function) {}
    constexpr Builtin(std::u16string_view text, LazyFunction function, std::string_view sentence,
                      std::u16string_view withLists = {})
        : prototype(text), listPrototype(withLists), description(sentence), form(BuiltinForm::lazy),
          lazy(function) {}
    constexpr Builtin(std::u16string_view text, Placeholder standIn, std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::placeholder), placeholder(standIn) {}
    constexpr Builtin(std::u16string_view text, Refused error, std::string_view sentence)
        : prototype(text), description(sentence), form(BuiltinForm::refused), refusal(error.code) {}
    // A function of fields that a $variable may stand for; anything else is refused.
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
    // Arguments in [text]: separators outside square brackets, plus one.
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

// A row of Get ( Name ).
struct GetRow {
    std::u16string_view name;
    std::string_view description; // one sentence
    Value (*function)(Session&) = nullptr;
    Placeholder placeholder{}; // answered when there is no function

    constexpr GetRow(std::u16string_view text, Value (*read)(Session&), std::string_view sentence)
        : name(text), description(sentence), function(read) {}
    constexpr GetRow(std::u16string_view text, Placeholder standIn, std::string_view sentence)
        : name(text), description(sentence), placeholder(standIn) {}

    Value value(Session& session) const {
        return function != nullptr ? function(session) : placeholder.value();
    }
};

} // namespace host
