#include "frameworks/AddressBook/store/watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace addressbook {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kPollEvery{1000}; // while there are no events
constexpr std::chrono::milliseconds kBusyTimeout{1000};

// The touch of notifyWatchers (IN_ATTRIB); a file that is made, moved or removed; the end of a process that
// had the file open for writing; the removal of the folder itself.
constexpr std::uint32_t kEvents = IN_ATTRIB | IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE |
                                  IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t kEndOfFolder = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

// Reads all pending events; returns false when one says that the folder was removed or moved.
bool takeEvents(int events) {
    alignas(inotify_event) std::array<char, 16384> buffer;
    bool inPlace = true;
    for (ssize_t size; (size = read(events, buffer.data(), buffer.size())) > 0;) {
        for (ssize_t at = 0; at < size;) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            inPlace = inPlace && (event.mask & kEndOfFolder) == 0;
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
    return inPlace;
}

// Returns the folder in which the database really is, with symbolic links resolved.
fs::path realFolderOf(const fs::path& file) {
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    return error ? file.parent_path() : real.parent_path();
}

} // namespace

void notifyWatchers(const fs::path& file) {
    utimensat(AT_FDCWD, file.c_str(), nullptr, 0);
}

Watch::Watch(fs::path file, std::int64_t since, Listener listener)
    : file_(std::move(file)), listener_(std::move(listener)), seen_(since),
      stopped_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (stopped_ < 0) {
        throw StoreError(StoreError::Reason::io, file_,
                         "cannot be watched for changes (" + std::generic_category().message(errno) + ")",
                         "close some files and start this program again");
    }
}

Watch::~Watch() {
    if (events_ >= 0) {
        close(events_);
    }
    close(stopped_);
}

void Watch::stop() {
    stopping_ = true;
    eventfd_write(stopped_, 1);
}

void Watch::run() {
    while (!stopping_) {
        const bool listening = listen(); // before poll(), so that no save is missed in between
        const bool polled = poll();
        if (listening && polled) {
            polling_ = false;
        }
        wait(listening && polled, store_ && store_->readsWithoutLocks());
    }
    // Closed here and not by the destructor: the last connection to close removes the log.
    store_.reset();
}

// Begins to watch the folder by inotify, unless it is watched already; returns whether it is.
bool Watch::listen() {
    if (events_ >= 0) {
        return true;
    }
    const int events = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (events >= 0 && inotify_add_watch(events, realFolderOf(file_).c_str(), kEvents) >= 0) {
        events_ = events;
        return true;
    }
    const int error = errno;
    if (events >= 0) {
        close(events);
    }
    startPolling("The folder of the address book " + file_.string() + " cannot be watched (" +
                 std::generic_category().message(error) + "): it is looked at once a second instead.");
    return false;
}

// Delivers new saves; returns false when the book cannot be read at present.
bool Watch::poll() {
    try {
        const bool moved = store_ && store_->moved();
        if (moved) {
            replaced_ = true;
        }
        struct stat status;
        if (moved || !store_) {
            store_.reset();
            if (stat(file_.c_str(), &status) != 0) {
                return true; // there will be an event when a file is there again
            }
            store_ = std::make_unique<Store>(file_.parent_path(), Store::Access::readOnly, kBusyTimeout);
        }
        deliver();
        return true;
    } catch (const StoreError& error) {
        store_.reset();
        startPolling(error.what());
        return false;
    }
}

void Watch::deliver() {
    const std::int64_t newest = store_->lastChange();
    if (std::exchange(replaced_, false) || newest < seen_) {
        seen_ = newest;
        listener_.onSaved(LoggedChange{.change = newest});
    }
    if (newest == seen_) {
        return;
    }
    for (const LoggedChange& change : store_->changesSince(seen_)) {
        if (stopping_) {
            return;
        }
        seen_ = change.change;
        listener_.onSaved(change);
    }
}

void Watch::startPolling(const std::string& reason) {
    if (!std::exchange(polling_, true)) {
        listener_.onPolling(reason);
    }
}

// Waits for stop() or, when [hasEvents], for an inotify event; at most kPollEvery without events, or when the
// book is polled anyway.
void Watch::wait(bool hasEvents, bool pollsAnyway) {
    std::array<pollfd, 2> awaited{pollfd{stopped_, POLLIN, 0}, pollfd{hasEvents ? events_ : -1, POLLIN, 0}};
    const int time = hasEvents && !pollsAnyway ? -1 : static_cast<int>(kPollEvery.count());
    if (::poll(awaited.data(), awaited.size(), time) <= 0) {
        return;
    }
    if (awaited[1].revents != 0 && !takeEvents(events_)) {
        close(std::exchange(events_, -1));
    }
}

} // namespace addressbook
