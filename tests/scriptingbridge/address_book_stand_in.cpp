// address_book_stand_in NAME RECORD WAY: a double of an address book application on the session bus. It owns
// NAME, writes a line to the file RECORD for each message, and, as WAY says, replies, stays silent, refuses
// or ends. It also ends when its standard input is closed.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <poll.h>
#include <string>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

struct StandIn {
    std::ofstream record;
    std::string way;

    void note(const std::string& line) { record << line << std::endl; }

    int answer(sd_bus_message* call, sd_bus_error* error) const {
        if (way == "ends") {
            std::_Exit(0);
        }
        if (way == "silent") {
            return 1;
        }
        if (way == "refuses") {
            return sd_bus_error_set(error, "org.example.Error.Refused", "there is nobody to show");
        }
        return sd_bus_reply_method_return(call, "");
    }
};

int onActivate(sd_bus_message* call, void* data, sd_bus_error* error) {
    auto* standIn = static_cast<StandIn*>(data);
    standIn->note("activate");
    return standIn->answer(call, error);
}

int onActivateAction(sd_bus_message* call, void* data, sd_bus_error* error) {
    auto* standIn = static_cast<StandIn*>(data);
    const char* action = nullptr;
    const char* parameter = nullptr;
    if (sd_bus_message_read(call, "s", &action) < 0 || sd_bus_message_enter_container(call, 'a', "v") < 0 ||
        sd_bus_message_read(call, "v", "s", &parameter) < 0) {
        standIn->note("not understood");
    } else {
        standIn->note(std::string(action) + " " + parameter);
    }
    return standIn->answer(call, error);
}

const sd_bus_vtable kInterface[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", onActivateAction, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

std::string objectPath(const std::string& name) {
    std::string path = "/";
    for (const char letter : name) {
        path += letter == '.' ? '/' : letter == '-' ? '_' : letter;
    }
    return path;
}

int fail(const char* what) {
    std::fprintf(stderr, "address_book_stand_in: %s\n", what);
    return 1;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        return fail("NAME RECORD WAY");
    }
    StandIn standIn{std::ofstream(arguments[2], std::ios::app), arguments[3]};
    standIn.note("started");
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) {
        return fail("no bus");
    }
    if (sd_bus_add_object_vtable(bus, nullptr, objectPath(arguments[1]).c_str(),
                                 "org.freedesktop.Application", kInterface, &standIn) < 0) {
        return fail("no object");
    }
    if (sd_bus_request_name(bus, arguments[1], 0) < 0) {
        return fail("no name");
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        const int worked = sd_bus_process(bus, nullptr);
        if (worked < 0) {
            break;
        }
        if (worked > 0) {
            continue;
        }
        pollfd inputs[] = {{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                           {.fd = sd_bus_get_fd(bus), .events = POLLIN, .revents = 0}};
        inputs[1].events = static_cast<short>(sd_bus_get_events(bus));
        if (::poll(inputs, 2, -1) > 0 && inputs[0].revents != 0) {
            break;
        }
    }
    sd_bus_flush_close_unref(bus);
    return 0;
}
