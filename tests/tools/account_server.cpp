#include "tests/tools/account_server.h"

#include <fstream>

namespace addressbook {
namespace {

constexpr int kUsers = 200;

std::string userNamed(int number) {
    return "user" + std::to_string(number);
}

} // namespace

std::shared_ptr<carddav_test::ChildServer> ServerSandbox::startServer() {
    static std::weak_ptr<carddav_test::ChildServer> running;
    if (auto server = running.lock()) {
        return server;
    }
    const auto arguments = [](const std::string& folder, const std::string& port) {
        std::ofstream passwords(folder + ".passwords");
        for (int number = 1; number <= kUsers; ++number) {
            passwords << userNamed(number) << ':' << kPassword << '\n';
        }
        passwords << "ida@localhost:" << kPassword << '\n';
        return std::vector<std::string>{RADICALE,
                                        "--storage-filesystem-folder=" + folder,
                                        "--auth-type=htpasswd",
                                        "--auth-htpasswd-filename=" + folder + ".passwords",
                                        "--auth-htpasswd-encryption=plain",
                                        "--auth-delay=0",
                                        "--server-hosts=127.0.0.1:" + port,
                                        "--logging-level=warning"};
    };
    auto server = std::make_shared<carddav_test::ChildServer>(arguments);
    running = server;
    return server;
}

ServerSandbox::ServerSandbox() : server_(startServer()) {
    file("password", std::string(kPassword) + '\n');
    shell("chmod 600 password");
}

std::string ServerSandbox::newUser() {
    static int number = 0;
    return userNamed(++number);
}

Outcome ServerSandbox::add(const std::string& user, const std::string& book,
                           const std::vector<std::string>& further) const {
    std::vector<std::string> arguments{"account",         "add",      url(),      "--user", user,
                                       "--password-file", "password", "--create", book};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return run(arguments);
}

Outcome ServerSandbox::onTerminal(const std::string& line,
                                  const std::vector<std::pair<std::string, std::string>>& typed) const {
    std::string commands = "rm -f keys seen; mkfifo keys; A=\"$A\" env --default-signal=INT script -qefc '" +
                           line + "' /dev/null <keys >seen 2>&1 & exec 3>keys; ";
    for (const auto& [printed, keys] : typed) {
        commands += "for i in $(seq 200); do grep -qF '" + printed +
                    "' seen && break; sleep 0.05; done; printf '" + keys + "\\n' >&3; ";
    }
    commands += "wait $!; status=$?; cat seen; exit $status";
    return shell("export A; " + commands);
}

} // namespace addressbook
