#pragma once

// Reads how a script writes a step that a plug-in has registered.

#include "host/calc/parser.h"
#include "host/script/external_step.h"

namespace host {

// Reads what stands between the brackets, up to the closing one: parameters with semicolons between them, in
// the order of the step's definition. One with its label before it ("Label: value") may stand anywhere; any
// may be left out. [in] is null when the step has no brackets. Throws CalcError.
ExternalStepCall readExternalStep(const ExternalStepPtr& step, Parser* in);

} // namespace host
