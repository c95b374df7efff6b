#include "host/console/language_server_command.h"

#include "host/editor/language_server.h"

#include <csignal>
#include <ext/stdio_filebuf.h>
#include <iostream>
#include <unistd.h>

namespace host {

namespace {

bool serve(Host& host, int output) {
    __gnu_cxx::stdio_filebuf<char> buffer(output, std::ios::out | std::ios::binary);
    std::ostream out(&buffer);
    return serveLanguage(std::cin, out, {host.session().functions(), host.stepRegistry()});
}

} // namespace

ExitCode runLanguageServer(const HostOptions& options) {
    std::signal(SIGPIPE, SIG_IGN); // an editor that is gone ends the input as well
    const int output = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    bool isShutDown = false;
    try {
        Host host(options);
        isShutDown = serve(host, output);
    } catch (const LoadError& error) {
        std::cerr << "fmhost: " << error.what() << "; going on without the plug-in\n";
        HostOptions plain = options;
        plain.plugin.reset();
        Host host(plain);
        isShutDown = serve(host, output);
    }
    return isShutDown ? ExitCode::ok : ExitCode::failure;
}

} // namespace host
