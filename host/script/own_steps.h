#pragma once

// The script steps of the language: the single source of a step's name, prototype, description and category
// for the parser, the runner, `fmhost functions` and editors.

#include "host/script/step_parameter.h"
#include "host/script/steps/step_row.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A row with what its prototype says.
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

// All steps, by category in the order of FileMaker's list.
std::span<const OwnStep> ownSteps();

// Whether a step that does something has that folded name; others leave the name to plug-ins.
bool isStepName(std::u16string_view key);

// The step of a folded name; null when there is none.
const OwnStep* findOwnStep(std::u16string_view key);

} // namespace host
