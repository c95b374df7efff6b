// The functions of the language, one row each. The prototype is the only statement of a function's name and
// of how many arguments it takes; the rest is derived from it.
#pragma once

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
    eager, // all arguments are evaluated, then the function runs
    lazy,  // the function evaluates the arguments that it needs
    let,   // Let, While and Get have a syntax of their own
    loop,
    get,
};

using EagerFunction = Value (*)(Session&, std::span<const Value>);
using LazyFunction = Value (*)(Evaluator&, std::span<const Node>);

struct Builtin {
    std::u16string_view prototype; // Name ( needed ; needed {; optional } ), "..." for any number
    BuiltinForm form = BuiltinForm::eager;
    EagerFunction eager = nullptr;
    LazyFunction lazy = nullptr;

    constexpr Builtin(std::u16string_view text, EagerFunction function) : prototype(text), eager(function) {}
    constexpr Builtin(std::u16string_view text, LazyFunction function)
        : prototype(text), form(BuiltinForm::lazy), lazy(function) {}
    constexpr Builtin(std::u16string_view text, BuiltinForm special) : prototype(text), form(special) {}

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
    Value (*function)(Session&);
};

// All rows, ordered by name without regard to case.
std::span<const Builtin> builtins();
std::span<const GetRow> getRows();

// The row for a folded name; null when there is none.
const Builtin* findBuiltin(std::u16string_view key);
const GetRow* findGet(std::u16string_view key);

} // namespace host
