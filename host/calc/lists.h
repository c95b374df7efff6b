#pragma once

// Lists: texts whose values are separated by carriage returns. When reading, line feeds and CR LF are
// accepted as well.

#include <string_view>
#include <vector>

namespace host {

// Returns the values of a list, also empty ones; the text after the last separator only when it is not empty.
// They refer to [list].
std::vector<std::u16string_view> listValues(std::u16string_view list);

} // namespace host
