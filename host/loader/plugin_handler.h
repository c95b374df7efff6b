#pragma once

// The code of a plug-in behind a function or a script step, and the crossing of values to it and back.

#include "host/loader/call_frames.h"
#include "host/values/value.h"

#include "host/wrapper/interface.h"

#include <cstdint>
#include <span>

namespace host {

class Session;

class PluginHandler {
  public:
    // By what a plug-in registers and unregisters.
    struct Identity {
        uint32_t plugin; // its four characters, the first one in the highest byte
        short id;
        bool operator==(const Identity&) const = default;
    };

    // [frames] must outlive the handler.
    PluginHandler(Identity identity, fmx::ExtPluginType code, CallFrames& frames)
        : identity_(identity), code_(code), frames_(frames) {}

    // Runs it. Its error code becomes the session's last error, and makes the result "?". Whatever it throws
    // ends here and becomes an ExternalFailure.
    Value call(Session& session, std::span<Value> arguments) const;

    const Identity& identity() const { return identity_; }

  private:
    Identity identity_;
    fmx::ExtPluginType code_;
    CallFrames& frames_;
};

} // namespace host
