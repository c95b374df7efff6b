#include "frameworks/AddressBook/store/file/staging.h"

#include "frameworks/AddressBook/store/file/paths.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <system_error>

namespace addressbook {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::hours kAbandonedAfter{24};

// Removes the staging folders that killed processes left.
void removeAbandoned(const fs::path& folder, const std::string& name) {
    const auto longAgo = fs::file_time_type::clock::now() - kAbandonedAfter;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().filename().string().starts_with(name) && entry.is_directory(error) &&
            entry.last_write_time(error) < longAgo && !error) {
            fs::remove_all(entry.path(), error);
        }
    }
}

} // namespace

StagingFolder::StagingFolder(const fs::path& folder) {
    const std::string name = std::string(".") + kFileName + "-";
    removeAbandoned(folder, name);
    std::string pattern = (folder / (name + "XXXXXX")).string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw systemError("Could not write in the folder", folder, errno,
                          "make it writable, or choose another");
    }
    folder_ = pattern;
}

StagingFolder::~StagingFolder() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

fs::path StagingFolder::file() const {
    return folder_ / kFileName;
}

} // namespace addressbook
