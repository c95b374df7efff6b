#pragma once

// The constants of the language, words that stand for numbers: JSONString, Bold, PosixPath ...

#include <cstdint>
#include <span>
#include <string_view>

namespace host {

struct Constant {
    std::u16string_view name;
    int64_t value;
    std::string_view description; // the functions that take it, and its meaning
};

std::span<const Constant> constants();

// Returns the constant with a folded name; null when there is none.
const Constant* findConstant(std::u16string_view key);

} // namespace host
