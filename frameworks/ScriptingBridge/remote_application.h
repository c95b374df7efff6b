#pragma once

// An application on the D-Bus session bus that is looked for, shown something and brought to the front. The
// bus is that of $DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus. Neither a bus nor an application is
// ever started.

#include <chrono>
#include <string>

namespace scripting_bridge {

// Each question makes a connection of its own, so none is ever found broken, and takes no longer than the
// time-out, the connecting included.
class RemoteApplication {
  public:
    // [name] is the name that the application owns when it runs.
    explicit RemoteApplication(std::string name);

    void setTimeout(std::chrono::microseconds timeout) { timeout_ = timeout; }

    // Whether the name has an owner. No bus, or one that does not answer, has no owners.
    bool isRunning() const;

    // Two messages of org.freedesktop.Application, to the object that is called like the application. They
    // answer what went wrong in a sentence, empty when the application has answered.
    std::string activate() const;
    std::string activateAction(const std::string& action, const std::string& parameter) const;

  private:
    std::string name_;
    std::chrono::microseconds timeout_{std::chrono::seconds(5)};
};

} // namespace scripting_bridge
