#pragma once

// The interface between scripts and the steps that plug-ins register.

#include "host/calc/registry.h"
#include "host/script/step_parameter.h"
#include "host/values/value.h"

#include <span>
#include <string>
#include <vector>

namespace host {

class Session;

// A registered step.
class ExternalStep : public Registered {
  public:
    ExternalStep(std::u16string name, std::vector<StepParameter> parameters)
        : Registered(std::move(name)), parameters_(std::move(parameters)) {}

    // Runs the step and returns its result; values that the script leaves out are empty. The step's error
    // code becomes the session's last error. Throws ExternalFailure when the plug-in throws an exception.
    virtual Value run(Session& session, std::span<Value> values) = 0;

    // Returns the parameters, in the order in which scripts write them.
    const std::vector<StepParameter>& parameters() const { return parameters_; }

  private:
    std::vector<StepParameter> parameters_;
};

using ExternalStepPtr = std::shared_ptr<ExternalStep>;
using StepRegistry = Registry<ExternalStep>;

} // namespace host
