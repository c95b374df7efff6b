#pragma once

// The colours of the prompt.

#include "host/editor/highlight.h"
#include "host/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Colours and other attributes, as parameters of the terminal's sequence "select graphic rendition".
struct Palette {
    static constexpr std::string_view kError = "31";
    static constexpr std::string_view kDim = "2";
    static constexpr std::string_view kStrong = "1";

    bool isOn = false;

    // Returns the palette for standard output: on when it is a terminal that can show colours and $NO_COLOR is not
    // set, or empty.
    static Palette ofOutput();

    // Returns the text between the sequences for an attribute and for none; the text alone when colours are off.
    std::string paint(std::string_view text, std::string_view attribute) const;
};

// Whether standard output is a terminal whose cursor can be moved.
bool hasCursor();

// Return the attribute of a part of a calculation, and of a result.
std::string_view attributeOf(TextRole role);
std::string_view attributeOf(ValueType type);

} // namespace host
