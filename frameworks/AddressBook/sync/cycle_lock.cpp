#include "frameworks/AddressBook/sync/cycle_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace addressbook::sync {

CycleLock::CycleLock(const Store& store)
    : folder_(open(store.file().parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

CycleLock::~CycleLock() {
    if (folder_ >= 0) {
        close(folder_);
    }
}

} // namespace addressbook::sync
