#include "tools/addressbook/sync/permissions.h"

#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/carddav_library.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace addressbook::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::array kSources = {"none", "command", "file", "keyring", "prompt"}; // by PasswordSource

// Returns $XDG_CONFIG_HOME/addressbook/permissions, or ~/.config/addressbook/permissions: a line for each permission.
fs::path permissionsFile() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    if (config != nullptr && *config == '/') {
        return fs::path(config) / "addressbook" / "permissions";
    }
    if (home != nullptr && *home == '/') {
        return fs::path(home) / ".config" / "addressbook" / "permissions";
    }
    throw Failure("there is no place for the permissions of accounts: set HOME or XDG_CONFIG_HOME");
}

// Returns the line: server, user, where the password comes from, and more of that. Tabs stand between them.
std::string lineOf(const SyncAccount& account, const std::string& url) {
    const auto parts = carddavLibrary().parseUrl(url);
    return escaped(parts ? parts->origin() : url) + '\t' + escaped(account.user) + '\t' +
           kSources.at(static_cast<std::size_t>(account.source)) + '\t' + escaped(account.password);
}

bool isPermitted(const fs::path& file, const std::string& wanted) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line == wanted) {
            return true;
        }
    }
    return false;
}

// Adds a line in one write, as others may add theirs at the same moment.
void append(const fs::path& file, const std::string& line) {
    const int descriptor =
        open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    const bool isWritten =
        descriptor >= 0 && write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    const int error = errno;
    if (descriptor >= 0) {
        close(descriptor);
    }
    if (!isWritten) {
        throw Failure(file.string() + ": cannot write: " + std::strerror(error));
    }
}

} // namespace

void permit(const SyncAccount& account, const std::string& url) {
    const fs::path file = permissionsFile();
    const std::string line = lineOf(account, url);
    if (account.user.empty() || isPermitted(file, line)) {
        return;
    }
    std::error_code error;
    fs::create_directories(file.parent_path(), error); // append() tells of one that failed
    append(file, line + '\n');
}

void requirePermission(const SyncAccount& account, const std::string& url) {
    if (account.user.empty() || isPermitted(permissionsFile(), lineOf(account, url))) {
        return;
    }
    throw Failure("you have not said on this machine that " + url + " gets the password of " + account.user +
                  "; if it may, say addressbook account add again for it");
}

} // namespace addressbook::tool
