#pragma once

// The script steps that plug-ins register, as scripts see them.

#include "host/calc/ast.h"
#include "host/calc/registry.h"
#include "host/values/value.h"

#include <span>
#include <string>
#include <vector>

namespace host {

class Session;

// What a script gives to a step, in the place [index] of the values that the step gets.
struct StepParameter {
    enum class Kind : uint8_t {
        calculation, // its result
        flag,        // On or Off: 1 or 0
        choice,      // one of several words: the word's number
        target       // the variable that takes the result of the step; there is at most one
    };
    struct Choice {
        std::u16string word;
        int value;
    };

    Kind kind = Kind::calculation;
    size_t index = 0;
    std::u16string label;             // may be empty
    ValueType type = ValueType::text; // calculation: what its result is made
    std::vector<Choice> choices;      // choice: at least one
    int standard = 0;                 // flag, choice: the value when the script gives none
};

// One registered step.
class ExternalStep : public Registered {
  public:
    ExternalStep(std::u16string name, std::vector<StepParameter> parameters)
        : Registered(std::move(name)), parameters_(std::move(parameters)) {}

    // Runs the step; values that the script leaves out are empty. Its error code is the session's last
    // error afterwards. Throws ExternalFailure when it let an exception through.
    virtual Value run(Session& session, std::span<Value> values) = 0;

    // In the order in which scripts write them.
    const std::vector<StepParameter>& parameters() const { return parameters_; }

  private:
    std::vector<StepParameter> parameters_;
};

using ExternalStepPtr = std::shared_ptr<ExternalStep>;
using StepRegistry = Registry<ExternalStep>;

// How scripts write a step: "Name [ Label: calculation ; Label: On/Off ; Label: Red/Green ; $variable ]".
std::u16string stepPrototype(const ExternalStep& step);

// A step as one place in a script has it.
struct ExternalStepCall {
    struct Argument {
        const StepParameter* parameter; // of the step
        std::optional<Calculation> calculation;
        int fixed = 0; // for flags and choices
    };

    ExternalStepPtr step;
    std::vector<Argument> arguments;
    std::u16string target; // the folded name of a variable; empty for none
};

} // namespace host
