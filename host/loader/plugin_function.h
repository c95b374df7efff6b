#pragma once

// The functions and script steps that plug-ins have registered.

#include "host/calc/external_function.h"
#include "host/loader/plugin_handler.h"
#include "host/script/external_step.h"

#include <string>
#include <utility>

namespace host {

// What a plug-in gave with the name of a function or step.
struct Registration {
    PluginHandler handler;
    std::u16string description; // for lists; may be empty
    uint32_t flags;             // for lists: where it is offered and may run
};

class PluginFunction : public ExternalFunction {
  public:
    PluginFunction(Registration registration, std::u16string name, std::u16string prototype, int minArguments,
                   int maxArguments)
        : ExternalFunction(std::move(name), std::move(prototype), minArguments, maxArguments),
          registration_(std::move(registration)) {}

    Value call(Session& session, std::span<Value> arguments) override {
        return registration_.handler.call(session, arguments);
    }
    const Registration& registration() const { return registration_; }

  private:
    Registration registration_;
};

class PluginStep : public ExternalStep {
  public:
    PluginStep(Registration registration, std::u16string name, std::vector<StepParameter> parameters)
        : ExternalStep(std::move(name), std::move(parameters)), registration_(std::move(registration)) {}

    Value run(Session& session, std::span<Value> values) override {
        return registration_.handler.call(session, values);
    }
    const Registration& registration() const { return registration_; }

  private:
    Registration registration_;
};

} // namespace host
