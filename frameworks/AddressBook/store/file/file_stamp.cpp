#include "frameworks/AddressBook/store/file/file_stamp.h"

#include "frameworks/AddressBook/store/file/sidecars.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace addressbook {
namespace {

constexpr std::array kSuffixes{"", "-wal", "-shm", "-journal"};
constexpr std::chrono::seconds kCoarsestClock{2}; // the coarsest modification times of file systems

} // namespace

FileStamp::FileStamp(std::filesystem::path file) : file_(std::move(file)), parts_(look()) {
    const std::chrono::nanoseconds before =
        std::chrono::system_clock::now().time_since_epoch() - kCoarsestClock;
    recent_ = std::any_of(parts_.begin(), parts_.end(),
                          [&](const Part& part) { return part.changed > before.count(); });
}

bool FileStamp::outdated() const {
    const Parts now = look();
    return (recent_ || now != parts_) && now[0].number == parts_[0].number &&
           now[0].device == parts_[0].device;
}

FileStamp::Parts FileStamp::look() const {
    Parts parts;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (struct stat status; stat(sidecarPath(file_, kSuffixes[i]).c_str(), &status) == 0) {
            parts[i] = {status.st_dev, status.st_ino, status.st_size,
                        status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec};
        }
    }
    return parts;
}

} // namespace addressbook
