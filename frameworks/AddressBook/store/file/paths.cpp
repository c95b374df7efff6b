#include "frameworks/AddressBook/store/file/paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;
constexpr std::string_view kFolderSubject = "The address book's folder";

// Returns the value of an environment variable; null when it is unset or empty.
const char* environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

void makeFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        throw systemError("Could not make the address book's folder", folder, errno,
                          "make it, or choose another place in ADDRESSBOOK_HOME");
    }
}

void makeFolderAndParents(const fs::path& folder) {
    if (folder.empty() || fs::exists(folder)) {
        return;
    }
    makeFolderAndParents(folder.parent_path());
    makeFolder(folder);
}

// Whether a missing folder is one to be made.
bool mayMake(const fs::path& folder) {
    std::error_code error;
    const char* home = environment("ADDRESSBOOK_HOME");
    if (home != nullptr && folder == fs::path(home)) {
        return false;
    }
    return (home == nullptr && folder == defaultFolder()) || !folder.has_parent_path() ||
           fs::is_directory(folder.parent_path(), error);
}

// Makes the folder if it is missing and may be made; returns whether it is there.
bool hasFolder(const fs::path& folder, Access access) {
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (fs::is_directory(status)) {
        return true;
    }
    if (fs::exists(status)) {
        throw StoreError(Reason::missingFolder,
                         problemSentence(kFolderSubject, folder, "is a file", "name a folder"));
    }
    if (access == Access::readOnly || !mayMake(folder)) {
        return false;
    }
    makeFolderAndParents(folder);
    return true;
}

StoreError missing(const fs::path& folder) {
    return {Reason::missingFolder, problemSentence(kFolderSubject, folder, "does not exist",
                                                   "make it, or correct ADDRESSBOOK_HOME")};
}

} // namespace

fs::path defaultFolder() {
    if (const char* home = environment("ADDRESSBOOK_HOME")) {
        return home;
    }
    if (const char* data = environment("XDG_DATA_HOME")) {
        return fs::path(data) / "AddressBook";
    }
    const char* home = environment("HOME");
    return fs::path(home != nullptr ? home : "/") / ".local/share/AddressBook";
}

void requireFolder(const fs::path& folder, Access access) {
    if (!hasFolder(folder, access)) {
        throw missing(folder);
    }
}

void requirePlace(const fs::path& folder) {
    fs::path there = fs::absolute(folder);
    if (!hasFolder(folder, Access::readOnly)) {
        if (!mayMake(folder)) {
            throw missing(folder);
        }
        while (!fs::exists(there)) {
            there = there.parent_path();
        }
    }
    if (::access(there.c_str(), W_OK | X_OK) != 0) {
        throw systemError("Could not write in the folder", there, errno,
                          "make it writable, or choose another");
    }
}

fs::path folderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

StoreError systemError(const std::string& sentence, const fs::path& path, int error, const char* remedy) {
    const bool denied = error == EACCES || error == EPERM || error == EROFS;
    const Reason reason = denied                               ? Reason::readOnly
                          : error == EAGAIN                    ? Reason::locked
                          : error == ENOSPC || error == EDQUOT ? Reason::full
                                                               : Reason::io;
    return {reason,
            problemSentence(sentence, path, "(" + std::generic_category().message(error) + ")", remedy)};
}

std::string databaseUri(const fs::path& file, std::string_view query) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : fs::absolute(file).string()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '?' || c == '#' || c == '%') {
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
        } else {
            uri += c;
        }
    }
    return uri.append(query);
}

bool syncFile(const fs::path& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool done = fsync(descriptor) == 0;
    const int error = errno;
    close(descriptor);
    errno = error;
    return done;
}

void syncFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    fsync(descriptor);
    close(descriptor);
}

void makePrivateFile(const fs::path& file) {
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    if (descriptor < 0) {
        throw systemError("Could not make the file", file, errno, "make its folder writable");
    }
    close(descriptor);
}

} // namespace addressbook
