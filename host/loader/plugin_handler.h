#pragma once

// Calls the code of a plug-in for a function or a script step, converting the values.

#include "host/loader/call_frames.h"
#include "host/values/value.h"

#include "host/wrapper/interface.h"

#include <cstdint>
#include <span>

namespace host {

class Session;

class PluginHandler {
  public:
    // Identifies a function or step of a plug-in.
    struct Identity {
        uint32_t plugin; // its four characters, the first one in the highest byte
        short id;
        bool operator==(const Identity&) const = default;
    };

    // [frames] must outlive the handler.
    PluginHandler(Identity identity, fmx::ExtPluginType code, CallFrames& frames)
        : identity_(identity), code_(code), frames_(frames) {}

    // Calls the code and returns its result. An error code becomes the session's last error, and makes the
    // result "?". Throws ExternalFailure for any exception of the plug-in.
    Value call(Session& session, std::span<Value> arguments) const;

    const Identity& identity() const { return identity_; }

  private:
    Identity identity_;
    fmx::ExtPluginType code_;
    CallFrames& frames_;
};

} // namespace host
