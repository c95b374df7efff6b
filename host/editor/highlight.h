#pragma once

// What the parts of a text are, for colours: at the prompt, and in editors (semantic tokens).

#include "host/editor/document.h"

#include <cstdint>
#include <vector>

namespace host {

enum class TextRole : uint8_t {
    comment,
    text, // in quotes, or a paragraph mark
    number,
    variable, // with its dollar signs
    function, // known, of the language, a plug-in or the folder
    property, // a name in Get ( )
    constant,
    keyword, // and, or, xor, not; a script step
    unknown, // a name before "(" that is no known function
};

// A part of a text that has a role. Names of Let, operators and brackets have none.
struct Highlight {
    size_t begin = 0; // offsets in UTF-16 units, half open
    size_t end = 0;
    TextRole role = TextRole::text;
};

// Returns the parts of a document, in the order of the text. Texts that can not be parsed have parts as well: a
// text or comment without its end lasts to the end of the calculation.
std::vector<Highlight> highlights(const Document& document, const Vocabulary& known);

} // namespace host
