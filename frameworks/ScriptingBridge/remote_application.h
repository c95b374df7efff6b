#pragma once

// An application on the D-Bus session bus, which can be looked for, made to show something and brought to the
// front. The bus is that of $DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus. Neither a bus nor an
// application is ever started.

#include <chrono>
#include <string>

namespace scripting_bridge {

// Each call makes a connection of its own, so that there are no stale ones, and takes at most the time-out in
// all.
class RemoteApplication {
  public:
    // [name] is the name that the application owns when it runs.
    explicit RemoteApplication(std::string name);

    void setTimeout(std::chrono::microseconds timeout) { timeout_ = timeout; }

    // Returns a sentence that says why the application does not run: its name has no owner, or there is no
    // bus, or it does not reply. Empty when it runs.
    std::string absence() const;

    // Send the two messages of org.freedesktop.Application to the object that is named like the application.
    // Return a sentence that says what went wrong; empty when the application has replied.
    std::string activate() const;
    std::string activateAction(const std::string& action, const std::string& parameter) const;

  private:
    std::string name_;
    std::chrono::microseconds timeout_{std::chrono::seconds(5)};
};

} // namespace scripting_bridge
