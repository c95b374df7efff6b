#pragma once

// The tables of steps, one for each category; own_steps.cpp combines them.

#include "host/script/steps/step_row.h"

#include <span>

namespace host {

std::span<const StepRow> controlSteps();
std::span<const StepRow> variableSteps();
std::span<const StepRow> fileSteps();
std::span<const StepRow> dataFileSteps();
std::span<const StepRow> miscellaneousSteps();
std::span<const StepRow> refusedSteps();

} // namespace host
