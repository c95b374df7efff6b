#pragma once

// The options for formatting scripts and calculations.

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

inline constexpr std::u16string_view kIndent = u"    ";

struct FormatStyle {
    size_t width = 120;    // the longest line, in characters; 0: no limit
    std::u16string indent; // of one level; empty: tabs if the file has them, else kIndent
};

} // namespace host
