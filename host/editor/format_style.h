#pragma once

// What users may choose about the layout of scripts and calculations.

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

inline constexpr std::u16string_view kIndent = u"    ";

struct FormatStyle {
    size_t width = 120;    // in characters; 0: no line is too long
    std::u16string indent; // for each level; empty: tabs where the file has them, else kIndent
};

} // namespace host
