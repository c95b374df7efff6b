#include "tests/tools/program.h"

#include <cstdlib>
#include <fstream>
#include <sys/wait.h>

namespace addressbook {

namespace fs = std::filesystem;

namespace {

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char byte : text) {
        result += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    }
    return result + "'";
}

} // namespace

Sandbox::Sandbox() {
    fs::create_directory(book());
    fs::create_directory(folder() / "home");
}

std::string Sandbox::file(const std::string& name, std::string_view contents) const {
    const fs::path path = folder() / name;
    std::ofstream(path, std::ios::binary)
        .write(contents.data(), static_cast<std::streamsize>(contents.size()));
    return path;
}

Outcome Sandbox::run(const std::vector<std::string>& arguments, std::string_view input) const {
    std::string command = quoted(ADDRESSBOOK_PROGRAM);
    for (const std::string& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    file("stdin", input);
    return execute(command);
}

Outcome Sandbox::shell(const std::string& line) const {
    file("stdin", {});
    return execute("A=" + quoted(ADDRESSBOOK_PROGRAM) + "; " + line);
}

Outcome Sandbox::execute(const std::string& command) const {
    const std::string environment = "cd " + quoted(folder()) + "; export HOME=" + quoted(folder() / "home") +
                                    " XDG_DATA_HOME=" + quoted(folder() / "home/data") +
                                    " XDG_CONFIG_HOME=" + quoted(folder() / "home/config") +
                                    " ADDRESSBOOK_HOME=" + quoted(book()) + " TZ=Europe/Copenhagen; ";
    const int status = std::system((environment + "{ " + command + "; } <stdin >stdout 2>stderr").c_str());
    Outcome outcome;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = bytesOf(folder() / "stdout");
    outcome.err = bytesOf(folder() / "stderr");
    return outcome;
}

} // namespace addressbook
