#pragma once

// The arguments of a step in a script, and how they are parsed.

#include "host/calc/parser.h"
#include "host/script/step_parameter.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// What a script gives for a parameter.
struct StepArgument {
    bool isGiven = false;
    std::optional<Calculation>
        value;             // calculation; target: the variable; script: its name when it is computed
    int number = 0;        // flag, choice
    std::u16string script; // script: its name when it is fixed
    std::u16string file;   // script: the file that holds it; empty for the script's own
};

// One for each parameter of the step, in their order.
using StepArguments = std::vector<StepArgument>;

// Parses the text in a step's brackets, up to the closing bracket: arguments separated by semicolons, in the
// order of the step's parameters; an argument with its label ("Label: value") may be in any place. [in] is
// null when the step has no brackets. Throws CalcError.
StepArguments readStepArguments(std::u16string_view step, const std::vector<StepParameter>& parameters,
                                Parser* in);

} // namespace host
