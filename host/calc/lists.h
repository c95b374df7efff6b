#pragma once

// Lists: texts whose values are separated by carriage returns. Line feeds, and both together, are read as
// well.

#include <string>
#include <string_view>
#include <vector>

namespace host {

// The values of a list, empty ones included; the text after the last separator only when it is not empty.
// They refer to [list].
std::vector<std::u16string_view> listValues(std::u16string_view list);

// The values one after another, each followed by a return.
std::u16string terminatedList(const std::vector<std::u16string_view>& values);

} // namespace host
