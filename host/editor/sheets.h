#pragma once

// What is known of a name: for the prompt's help, completion and hovers.

#include "host/check/checker.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

enum class SheetKind : uint8_t { function, get, constant, step };

struct Sheet {
    SheetKind kind = SheetKind::function;
    std::string name;
    std::vector<std::string> prototypes; // one, or two where arguments may come in brackets
    std::string description;             // may be empty
    std::string category;                // empty for what plug-ins register
};

// All names: of the language, then of plug-ins. Steps are those that scripts may use.
std::vector<Sheet> allSheets(const Vocabulary& known);

// The sheet of a function, a Get name or a constant, or else of a script step; letter case does not count.
std::optional<Sheet> findSheet(std::string_view name, const Vocabulary& known);

// Returns where each parameter stands in a prototype: offsets, half open.
std::vector<std::pair<size_t, size_t>> parameterPlaces(std::u16string_view prototype);

} // namespace host
