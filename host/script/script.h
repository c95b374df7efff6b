#pragma once

// A script: a list of steps, as FileMaker prints them, with their jumps already worked out.

#include "host/calc/ast.h"
#include "host/script/external_step.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class StepKind : uint8_t {
    setVariable,      // variable := first
    jumpUnless,       // If, Else If: goes to target unless first is true
    jump,             // the end of a branch or of a loop's body: goes to target
    exitLoopIf,       // goes to target if first is true
    showCustomDialog, // title first, message second
    performScript,    // name or first; parameter second
    exitScript,       // result first
    insertPicture,    // variable := the picture in the file that first names
    insertFile,       // variable := the file that first names
    exportContents,   // writes the container first to the file that second names
    pause,            // waits for first seconds
    external,         // the step of a plug-in that external says
};

struct Step {
    StepKind kind;
    size_t begin = 0; // of the step's text in the script's source, half open
    size_t end = 0;
    std::optional<Calculation> first;
    std::optional<Calculation> second;
    std::u16string
        name; // setVariable, insert...: the folded name; performScript: the script's name when it is fixed
    std::u16string database; // performScript: the file that holds the script; empty for the script's own
    size_t target = 0;       // of a jump: an index into steps, at most their number
    std::shared_ptr<const ExternalStepCall> external;
};

struct Script {
    SourcePtr source;
    std::vector<Step> steps;
};

// Parses the text of a script. Throws CalcError, incomplete when an If or Loop is left open, else as
// calculations do.
Script parseScript(const SourcePtr& source, const FunctionRegistry& functions,
                   const StepRegistry& externalSteps);

// Whether one of the steps above has that (folded) name.
bool isStepName(std::u16string_view key);

} // namespace host
