#pragma once

// Learning of saves while they happen, those of other processes too.
//
// A process that saved touches the database's file once the save can be seen (notifyWatchers): the write
// itself is too early, for SQLite shows a save only after it was written. inotify on the folder tells this,
// the end of a process that was killed in between, and a file put in the book's place. Then the change log,
// read on a connection of the watch's own, says what happened. A book that is read without locks may lie on
// another machine's disk, of which the kernel tells nothing: it is polled once a second as well.

#include "frameworks/AddressBook/store/store.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace addressbook {

// Wakes everybody who watches this database file: a save is done.
void notifyWatchers(const std::filesystem::path& file);

// A watch over one address book. One thread runs it, any other may stop it.
class Watch {
  public:
    // What it tells, on the thread that runs it.
    struct Listener {
        // Called for each save, in their order. One that tells nothing of records
        // (LoggedChange::tellsNothing) says that anything may have changed.
        std::function<void(const LoggedChange&)> onSaved;
        // inotify or the book is unavailable: polling every second until it is back. Called once for each
        // such time, with a sentence that says why.
        std::function<void(const std::string&)> onPolling;
    };

    // Watches the database [file], and tells of all saves after number [since], also of those that are done
    // already. Throws StoreError when the system gives it nothing to wait on.
    Watch(std::filesystem::path file, std::int64_t since, Listener listener);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // Watches until it is stopped. Throws nothing of its own.
    void run();
    // Makes run() return as soon as the listener does.
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
    bool replaced_ = false; // another file is in the book's place, which is not delivered yet
    bool polling_ = false;  // polls once a second, and has told why
    int events_ = -1;       // inotify's descriptor; -1 while it gives none
    int stopped_ = -1;      // readable once stop() was called
    std::atomic<bool> stopping_{false};
};

} // namespace addressbook
