#pragma once

// The script steps of the language. Their rows are the only source of a step's name, prototype, description
// and category for the parser, the runner, `fmhost functions` and editors.

#include "host/script/step_parameter.h"
#include "host/script/steps/step_row.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A row, with the parameters that its prototype describes.
struct OwnStep {
    StepRow row;
    std::string_view category;
    std::u16string key; // the folded name
    std::vector<StepParameter> parameters;

    std::u16string_view name() const { return prototypeName(row.prototype); }
    bool isSupported() const {
        return row.form != StepForm::refused && row.form != StepForm::unavailable &&
               row.form != StepForm::inert;
    }
};

// Returns all steps, by category in FileMaker's order.
std::span<const OwnStep> ownSteps();

// Whether a supported step has that folded name. The names of other steps may be used by plug-ins.
bool isStepName(std::u16string_view key);

// Returns the step with a folded name; null when there is none.
const OwnStep* findOwnStep(std::u16string_view key);

} // namespace host
