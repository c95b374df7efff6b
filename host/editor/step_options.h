#pragma once

// The options of a script's step: what may stand between its brackets besides calculations.

#include "host/editor/document.h"

namespace host {

// What may stand at [offset] between the brackets of a step of a script, and begins with what is written
// there: labels of parameters that are not given yet, options that are words, On and Off, words to choose from.
// None in parentheses, texts and further brackets, or behind the step.
struct StepOptions {
    size_t begin = 0; // of what the words replace, up to the cursor
    std::vector<std::u16string> words;
    std::u16string prototype; // of the step
    bool isInside = false;    // the place is between the brackets of a step, maybe in parentheses or a text
    bool isWhole = false;     // nothing else may stand there: no part of a calculation
};
StepOptions stepOptions(const Document& document, size_t offset, const Vocabulary& known);

} // namespace host
