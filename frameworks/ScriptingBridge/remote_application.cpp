// By means of libsystemd's sd-bus: it is loaded anyway, as Foundation is linked with it, it never starts a
// bus, and all its calls take a time limit.

#include "frameworks/ScriptingBridge/remote_application.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <systemd/sd-bus.h>

namespace scripting_bridge {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kApplicationInterface = "org.freedesktop.Application";

// Returns the time left until [deadline]; at least 1, as 0 means sd-bus's own default.
std::uint64_t microsecondsUntil(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 1));
}

// Waits until the bus is connected and has said hello, which sd_bus_call would do without a limit. Returns 0
// or a negative errno.
int waitUntilReady(sd_bus* bus, Clock::time_point deadline) {
    for (;;) {
        if (const int ready = sd_bus_is_ready(bus); ready != 0) {
            return std::min(ready, 0);
        }
        const int worked = sd_bus_process(bus, nullptr);
        if (worked < 0) {
            return worked;
        }
        if (worked > 0) {
            continue;
        }
        if (Clock::now() >= deadline) {
            return -ETIMEDOUT;
        }
        if (const int waited = sd_bus_wait(bus, microsecondsUntil(deadline));
            waited < 0 && waited != -EINTR) {
            return waited;
        }
    }
}

// Returns the path of the application's object: its name with slashes.
std::string objectPath(const std::string& name) {
    std::string path = "/" + name;
    std::replace(path.begin(), path.end(), '.', '/');
    std::replace(path.begin(), path.end(), '-', '_');
    return path;
}

// One method call and its reply, on a connection of its own. After a step has failed, the further ones do
// nothing.
class Call {
  public:
    explicit Call(std::chrono::microseconds timeout) : deadline_(Clock::now() + timeout) {
        status_ = sd_bus_open_user(&bus_);
        if (status_ >= 0) {
            status_ = waitUntilReady(bus_, deadline_);
        }
        connected_ = status_ >= 0;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
        sd_bus_message_unref(message_);
        sd_bus_message_unref(answer_);
        sd_bus_error_free(&error_);
        sd_bus_close_unref(bus_);
    }

    void address(const char* name, const char* path, const char* interface, const char* member) {
        if (status_ >= 0) {
            status_ = sd_bus_message_new_method_call(bus_, &message_, name, path, interface, member);
        }
        if (status_ >= 0) {
            status_ = sd_bus_message_set_auto_start(message_, 0);
        }
    }

    template <typename... Arguments>
    void append(const char* types, Arguments... arguments) {
        if (status_ >= 0) {
            status_ = sd_bus_message_append(message_, types, arguments...);
        }
    }

    void send() {
        if (status_ >= 0) {
            status_ = sd_bus_call(bus_, message_, microsecondsUntil(deadline_), &error_, &answer_);
        }
    }

    // Returns the reply's boolean; false when there is none.
    bool truth() {
        int value = 0;
        if (status_ >= 0) {
            status_ = sd_bus_message_read(answer_, "b", &value);
        }
        return status_ >= 0 && value != 0;
    }

    // Returns what went wrong with [name], as a sentence; empty when nothing did.
    std::string failure(const std::string& name) const {
        if (status_ >= 0) {
            return "";
        }
        if (!connected_) {
            return std::string("The session bus cannot be reached: ") + std::strerror(-status_);
        }
        const std::string application = "The application " + name;
        if (sd_bus_error_has_name(&error_, SD_BUS_ERROR_SERVICE_UNKNOWN) != 0 ||
            sd_bus_error_has_name(&error_, SD_BUS_ERROR_NAME_HAS_NO_OWNER) != 0) {
            return application + " is not running";
        }
        if (sd_bus_error_has_name(&error_, SD_BUS_ERROR_NO_REPLY) != 0) {
            return application + " ended before it answered";
        }
        if (status_ == -ETIMEDOUT) {
            return application + " does not answer";
        }
        return application + " cannot be spoken to: " +
               (error_.message != nullptr ? error_.message : std::strerror(-status_));
    }

  private:
    Clock::time_point deadline_;
    sd_bus* bus_ = nullptr;
    sd_bus_message* message_ = nullptr;
    sd_bus_message* answer_ = nullptr;
    sd_bus_error error_ = SD_BUS_ERROR_NULL;
    int status_ = 0;
    bool connected_ = false;
};

} // namespace

RemoteApplication::RemoteApplication(std::string name) : name_(std::move(name)) {}

std::string RemoteApplication::absence() const {
    Call call(timeout_);
    call.address("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner");
    call.append("s", name_.c_str());
    call.send();
    if (call.truth()) {
        return "";
    }
    const std::string failure = call.failure("org.freedesktop.DBus");
    return failure.empty() ? "The application " + name_ + " is not running" : failure;
}

std::string RemoteApplication::activate() const {
    Call call(timeout_);
    call.address(name_.c_str(), objectPath(name_).c_str(), kApplicationInterface, "Activate");
    call.append("a{sv}", 0);
    call.send();
    return call.failure(name_);
}

std::string RemoteApplication::activateAction(const std::string& action, const std::string& parameter) const {
    Call call(timeout_);
    call.address(name_.c_str(), objectPath(name_).c_str(), kApplicationInterface, "ActivateAction");
    call.append("sava{sv}", action.c_str(), 1, "s", parameter.c_str(), 0);
    call.send();
    return call.failure(name_);
}

} // namespace scripting_bridge
