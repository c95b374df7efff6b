#pragma once

// The interface between the calculation language and the functions that plug-ins register.

#include "host/calc/registry.h"
#include "host/values/value.h"

#include <span>

namespace host {

class Session;
struct Calculation;

// A registered function, or one that a user has defined. The caller of call() checks the number of arguments.
class ExternalFunction : public Registered {
  public:
    static constexpr int kAnyNumber = -1; // as `maxArguments`

    ExternalFunction(std::u16string name, std::u16string prototype, int minArguments, int maxArguments)
        : Registered(std::move(name)), prototype_(std::move(prototype)), minArguments_(minArguments),
          maxArguments_(maxArguments) {}

    // Runs the function and returns its result. Throws ExternalFailure when the plug-in throws an exception.
    virtual Value call(Session& session, std::span<Value> arguments) = 0;

    // Returns the calculation of a custom function, whose first slots are the parameters; null for a function
    // of a plug-in.
    virtual const Calculation* body() const { return nullptr; }

    const std::u16string& prototype() const { return prototype_; }
    int minArguments() const { return minArguments_; }
    int maxArguments() const { return maxArguments_; }
    bool accepts(size_t count) const {
        return static_cast<int>(count) >= minArguments_ &&
               (maxArguments_ == kAnyNumber || static_cast<int>(count) <= maxArguments_);
    }

  private:
    std::u16string prototype_;
    int minArguments_;
    int maxArguments_;
};

using ExternalFunctionPtr = std::shared_ptr<ExternalFunction>;
using FunctionRegistry = Registry<ExternalFunction>;

} // namespace host
