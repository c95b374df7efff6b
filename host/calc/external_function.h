#pragma once

// The functions that plug-ins register, as the calculation language sees them.

#include "host/calc/registry.h"
#include "host/values/value.h"

#include <span>

namespace host {

class Session;

// One registered function. Argument counts are checked by the caller, before call() runs.
class ExternalFunction : public Registered {
  public:
    static constexpr int kAnyNumber = -1; // as `maxArguments`

    ExternalFunction(std::u16string name, std::u16string prototype, int minArguments, int maxArguments)
        : Registered(std::move(name)), prototype_(std::move(prototype)), minArguments_(minArguments),
          maxArguments_(maxArguments) {}

    // Runs the function. Throws ExternalFailure when it let an exception through.
    virtual Value call(Session& session, std::span<Value> arguments) = 0;

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
