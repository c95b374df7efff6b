#include "tests/tools/program.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>

namespace addressbook {

namespace fs = std::filesystem;

namespace {

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char byte : text)
        result += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    return result + "'";
}

} // namespace

Sandbox::Sandbox() {
    std::string name = fs::temp_directory_path() / "addressbook-test-XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    folder_ = name;
    fs::create_directory(book());
    fs::create_directory(folder_ / "home");
}

Sandbox::~Sandbox() {
    std::error_code none;
    fs::remove_all(folder_, none);
}

std::string Sandbox::file(const std::string& name, std::string_view contents) const {
    const fs::path path = folder_ / name;
    std::ofstream(path, std::ios::binary)
        .write(contents.data(), static_cast<std::streamsize>(contents.size()));
    return path;
}

Outcome Sandbox::run(const std::vector<std::string>& arguments, std::string_view input) const {
    std::string command = quoted(ADDRESSBOOK_PROGRAM);
    for (const std::string& argument : arguments)
        command += ' ' + quoted(argument);
    file("stdin", input);
    return execute(command);
}

Outcome Sandbox::shell(const std::string& line) const {
    file("stdin", {});
    return execute("A=" + quoted(ADDRESSBOOK_PROGRAM) + "; " + line);
}

Outcome Sandbox::execute(const std::string& command) const {
    const std::string environment = "cd " + quoted(folder_) + "; export HOME=" + quoted(folder_ / "home") +
                                    " XDG_DATA_HOME=" + quoted(folder_ / "home/data") +
                                    " ADDRESSBOOK_HOME=" + quoted(book()) + " TZ=Europe/Copenhagen; ";
    const int status = std::system((environment + "{ " + command + "; } <stdin >stdout 2>stderr").c_str());
    Outcome outcome;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = contentsOf(folder_ / "stdout");
    outcome.err = contentsOf(folder_ / "stderr");
    return outcome;
}

std::string contentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace addressbook
