#include "tests/scriptingbridge/test_bus.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

Child::Child(const std::vector<std::string>& command) {
    int in[2];
    int out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipes");
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    process_ = ::fork();
    if (process_ == 0) {
        ::dup2(in[0], STDIN_FILENO);
        ::dup2(out[1], STDOUT_FILENO);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = out[0];
}

std::string Child::line() {
    std::string line;
    for (char letter = 0; ::read(output_, &letter, 1) == 1 && letter != '\n';) {
        line += letter;
    }
    return line;
}

void Child::end() {
    if (process_ < 0) {
        return;
    }
    ::close(input_);
    ::waitpid(process_, nullptr, 0);
    ::close(output_);
    process_ = -1;
}

// The shell tells the address and stays as long as its input is open; the bus lives as long as the shell.
std::vector<std::string> TestBus::command(const std::filesystem::path& folder, const std::string& activatable,
                                          const std::filesystem::path& record) {
    std::filesystem::create_directories(folder / "services");
    std::ofstream(folder / "bus.conf")
        << "<busconfig><type>session</type><listen>unix:tmpdir=" << folder.string() << "</listen>"
        << "<auth>EXTERNAL</auth><servicedir>" << (folder / "services").string() << "</servicedir>"
        << "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
        << "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>\n";
    std::ofstream(folder / "services" / (activatable + ".service"))
        << "[D-BUS Service]\nName=" << activatable << "\nExec=" STAND_IN " " << activatable << " "
        << record.string() << " answers\n";
    return {"dbus-run-session",
            "--config-file=" + (folder / "bus.conf").string(),
            "--",
            "sh",
            "-c",
            "echo $DBUS_SESSION_BUS_ADDRESS; cat"};
}

TestBus::TestBus(const std::filesystem::path& folder, const std::string& activatable,
                 const std::filesystem::path& record)
    : child_(command(folder, activatable, record)) {
    const std::string address = child_.line();
    if (address.empty()) {
        throw std::runtime_error("dbus-run-session starts no bus");
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

bool TestBus::ping(const std::string& name) {
    sd_bus* bus = nullptr;
    const bool answered =
        sd_bus_open_user(&bus) >= 0 && sd_bus_call_method(bus, name.c_str(), "/", "org.freedesktop.DBus.Peer",
                                                          "Ping", nullptr, nullptr, nullptr) >= 0;
    sd_bus_flush_close_unref(bus);
    return answered;
}

pid_t TestBus::process() {
    sd_bus* bus = nullptr;
    sd_bus_message* answer = nullptr;
    std::uint32_t process = 0;
    if (sd_bus_open_user(&bus) < 0 ||
        sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetConnectionUnixProcessID", nullptr, &answer, "s", "org.freedesktop.DBus") < 0 ||
        sd_bus_message_read(answer, "u", &process) < 0) {
        throw std::runtime_error("the bus does not tell its process");
    }
    sd_bus_message_unref(answer);
    sd_bus_flush_close_unref(bus);
    return static_cast<pid_t>(process);
}
