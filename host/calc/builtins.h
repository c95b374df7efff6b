#pragma once

// The functions of the language and the names in Get ( ): the rows of all categories.

#include "host/calc/builtin.h"

#include <span>
#include <string_view>

namespace host {

// Return all rows, ordered by name without regard to case.
std::span<const Builtin> builtins();
std::span<const GetRow> getRows();

// Return the row for a folded name; null when there is none.
const Builtin* findBuiltin(std::u16string_view key);
const GetRow* findGet(std::u16string_view key);

} // namespace host
