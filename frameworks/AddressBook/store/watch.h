#pragma once

// Notification of saves while they happen, by this and other processes.
//
// A process that saved touches the database's file once the save is visible to others (notifyWatchers): the
// write itself comes too early. inotify on the folder reports this touch, the end of a process that was
// killed before it, and a file put in the book's place. The watch then reads the change log on a connection
// of its own to learn what was saved. A book that is read without locks may be on a network disk, for which
// inotify reports nothing, so it is also polled once a second.

#include "frameworks/AddressBook/store/store.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace addressbook {

// Wakes all watches of this database file, in every process. Called after each save.
void notifyWatchers(const std::filesystem::path& file);

// A watch over one address book. One thread calls run(), any other may call stop().
class Watch {
  public:
    // Callbacks, called on the thread that runs the watch.
    struct Listener {
        // Called for each save, in order. One without any unique id (LoggedChange::tellsNothing) means that
        // anything may have changed.
        std::function<void(const LoggedChange&)> onSaved;
        // Called, with a sentence that says why, when inotify or the book has become unavailable and the
        // watch begins to poll once a second until it is back.
        std::function<void(const std::string&)> onPolling;
    };

    // Watches the database [file] for all saves after number [since], including those already done. Throws
    // StoreError when the process has no file descriptors left.
    Watch(std::filesystem::path file, std::int64_t since, Listener listener);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // Watches until stop() is called. Throws only what the listener throws.
    void run();
    // Makes run() return, after a callback that is running.
    void stop();

  private:
    bool listen();
    bool poll();
    void deliver();
    void startPolling(const std::string& reason);
    void wait(bool hasEvents, bool pollsAnyway);

    const std::filesystem::path file_;
    const Listener listener_;
    std::unique_ptr<Store> store_;
    std::int64_t seen_;
    bool replaced_ = false; // another file is in the book's place, and the listener does not know yet
    bool polling_ = false;  // polls once a second; the listener knows why
    int events_ = -1;       // inotify's descriptor; -1 while the folder is not watched
    int stopped_ = -1;      // an eventfd, readable once stop() was called
    std::atomic<bool> stopping_{false};
};

} // namespace addressbook
