// A function that a plug-in has registered, and the crossing of arguments and results.
#pragma once

#include "host/calc/function_registry.h"
#include "host/loader/call_frames.h"

#include "FMWrapper/FMXCalcEngine.h"

#include <cstdint>

namespace host {

class PluginFunction : public ExternalFunction {
  public:
    struct Identity {
        uint32_t plugin; // its four characters, the first one in the highest byte
        short id;
    };

    // [frames] must outlive the function.
    PluginFunction(Identity identity, std::u16string name, std::u16string prototype, int minArguments,
                   int maxArguments, uint32_t flags, fmx::ExtPluginType handler, CallFrames& frames)
        : ExternalFunction(std::move(name), std::move(prototype), minArguments, maxArguments),
          identity_(identity), flags_(flags), handler_(handler), frames_(frames) {}

    // Runs the handler. Its error code becomes the session's last error, and makes the result "?". Whatever
    // the handler throws ends here and becomes an ExternalFailure.
    Value call(Session& session, std::span<Value> arguments) override;

    const Identity& identity() const { return identity_; }
    uint32_t flags() const { return flags_; }

  private:
    Identity identity_;
    uint32_t flags_;
    fmx::ExtPluginType handler_;
    CallFrames& frames_;
};

} // namespace host
