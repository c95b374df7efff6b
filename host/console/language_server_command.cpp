#include "host/console/language_server_command.h"

#include "host/editor/language_server.h"

#include <cerrno>
#include <csignal>
#include <iostream>
#include <streambuf>
#include <unistd.h>

namespace host {

namespace {

// Writes to a file descriptor.
class DescriptorBuffer : public std::streambuf {
  public:
    explicit DescriptorBuffer(int descriptor) : descriptor_(descriptor) {}
    ~DescriptorBuffer() override { close(descriptor_); }
    DescriptorBuffer(const DescriptorBuffer&) = delete;
    DescriptorBuffer& operator=(const DescriptorBuffer&) = delete;

  protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        std::streamsize sent = 0;
        while (sent < size) {
            const ssize_t count = write(descriptor_, text + sent, static_cast<size_t>(size - sent));
            if (count < 0 && errno != EINTR) {
                break;
            }
            sent += count > 0 ? count : 0;
        }
        return sent;
    }
    int_type overflow(int_type c) override {
        const char text = traits_type::to_char_type(c);
        return xsputn(&text, 1) == 1 ? c : traits_type::eof();
    }

  private:
    int descriptor_;
};

bool serve(Host& host, std::ostream& out) {
    return serveLanguage(std::cin, out, host.session().functions(), host.stepRegistry());
}

} // namespace

ExitCode runLanguageServer(const HostOptions& options) {
    std::signal(SIGPIPE, SIG_IGN); // an editor that is gone ends the input as well
    DescriptorBuffer buffer(dup(STDOUT_FILENO));
    std::ostream output(&buffer);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    HostOptions without = options;
    without.loadsCustomFunctions = false; // the server loads those of each document's folder
    bool isShutDown = false;
    try {
        Host host(without);
        isShutDown = serve(host, output);
    } catch (const LoadError& error) {
        std::cerr << "fmhost: " << error.what() << "; going on without the plug-in\n";
        without.plugin.reset();
        Host host(without);
        isShutDown = serve(host, output);
    }
    return isShutDown ? ExitCode::ok : ExitCode::failure;
}

} // namespace host
