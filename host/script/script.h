#pragma once

// A parsed script: a list of steps, in which blocks (If, Loop) have become jumps. The text is in the form in
// which FileMaker prints scripts.

#include "host/calc/ast.h"
#include "host/calc/calc_error.h"
#include "host/script/external_step.h"
#include "host/script/own_steps.h"
#include "host/script/step_arguments.h"

#include <string>
#include <vector>

namespace host {

// Where a script continues after a step.
enum class Flow : uint8_t {
    next,       // with the next one; the step is run
    jump,       // at the target: the end of a branch, of a loop's body
    jumpUnless, // at the target unless the first argument is true: If, Else If
    jumpIf,     // at the target if the first argument is true: Exit Loop If
};

struct Step {
    const OwnStep* own = nullptr; // of the language; null for the step of a plug-in
    ExternalStepPtr external;
    Flow flow = Flow::next;
    size_t target = 0; // of a jump: an index into steps, at most their number
    size_t begin = 0;  // of the step's text in the script's source, half open
    size_t end = 0;
    StepArguments arguments; // one for each parameter
};

struct Script {
    SourcePtr source;
    std::vector<Step> steps;
};

// Parses the text of a script. Throws CalcError: as for calculations, and incomplete when an If or Loop is
// not closed.
Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps);

// Parses the text of a script and adds all errors to [errors]: after a step that cannot be parsed it
// continues with the next one. A script with errors must not be run.
Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps, std::vector<CalcError>& errors);

} // namespace host
