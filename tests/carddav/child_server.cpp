#include "tests/carddav/child_server.h"

#include "tests/support/files.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace carddav_test {
namespace {

sockaddr_in local(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = local(0);
    socklen_t size = sizeof address;
    bind(probe, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    close(probe);
    return ntohs(address.sin_port);
}

bool takesConnections(int port) {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = local(port);
    const bool connected = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return connected;
}

} // namespace

ChildServer::ChildServer(const Arguments& arguments) {
    setenv("no_proxy", "*", 1);
    port_ = freePort();
    const std::string files = folder_.path() / "files";
    const std::string log = folder_.path() / "log";
    const std::vector<std::string> words = arguments(files, std::to_string(port_));
    std::vector<char*> argv;
    for (const std::string& word : words) {
        argv.push_back(const_cast<char*>(word.c_str()));
    }
    argv.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
        const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        // No settings of whoever runs the test.
        setenv("HOME", folder_.path().c_str(), 1);
        setenv("RADICALE_CONFIG", "", 1);
        execv(argv[0], argv.data());
        _exit(127);
    }
    for (int at = 0; at < 1200; ++at) {
        if (takesConnections(port_)) {
            return;
        }
        if (waitpid(process_, nullptr, WNOHANG) == process_) {
            process_ = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const std::string said = this->log();
    end();
    throw std::runtime_error(words[0] + " does not start: " + said);
}

ChildServer::~ChildServer() {
    end();
}

void ChildServer::end() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    process_ = -1;
}

std::string ChildServer::log() const {
    return support::bytesOf(folder_.path() / "log");
}

} // namespace carddav_test
