#include "tools/addressbook/sync/watch.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/property_path.h"
#include "tools/addressbook/sync/chosen_books.h"
#include "tools/addressbook/sync/sync_round.h"

#include "frameworks/AddressBook/store/watch.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace addressbook::tool {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

// Between two tries to reach a server; each failure doubles the pause. What more tries would not mend, as a wrong
// password, waits for the longest at once.
constexpr seconds kFirstPause{5};
constexpr seconds kLongestPause{900};

// Rings when another program saves.
class Bell {
  public:
    explicit Bell(const Store& store)
        : ringing_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
          watch_(store.file(), store.lastChange(),
                 {[this](const LoggedChange& change) { ring(change); },
                  [](const std::string& reason) { complain(reason); }}),
          thread_([this] { watch_.run(); }) {}
    ~Bell() {
        watch_.stop();
        thread_.join();
        close(ringing_);
    }
    Bell(const Bell&) = delete;
    Bell& operator=(const Bell&) = delete;

    void silence() const {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = read(ringing_, &count, sizeof count);
    }

    // Waits until it rings, for at most so long. Throws Interrupted.
    void wait(Clock::duration time) const {
        const auto rounded = std::chrono::ceil<milliseconds>(time);
        waitForInput(ringing_, std::max(rounded, milliseconds(0)));
    }

  private:
    void ring(const LoggedChange& change) const {
        if (!change.own) {
            const std::uint64_t one = 1;
            [[maybe_unused]] const ssize_t put = write(ringing_, &one, sizeof one);
        }
    }

    int ringing_;
    Watch watch_;
    std::thread thread_;
};

bool isMendedByTrying(const Outcome& outcome) {
    using carddav::ErrorKind;
    switch (outcome.error.value_or(ErrorKind::network)) {
    case ErrorKind::unauthorised:
    case ErrorKind::forbidden:
    case ErrorKind::tls:
    case ErrorKind::untrustedHost:
    case ErrorKind::refused:
        return false;
    default:
        return true;
    }
}

// One account: its connections, and how it stands with its server.
class Kept {
  public:
    explicit Kept(const SyncAccount& account) : account_(account) {}

    const SyncAccount& account() const { return account_; }
    // Returns until when the server is left alone.
    Clock::time_point notBefore() const { return notBefore_; }

    void sync(Store& store, const AccountBooks& chosen, const Options& options) {
        if (!server_) {
            server_ = std::make_unique<Server>(account_);
        }
        for (const NamedBook& book : chosen.books) {
            const Outcome outcome =
                syncBook(store, *server_, book.book, book.name, false, options.sync.force);
            tell(outcome, book);
            if (outcome.error) {
                pause(outcome);
                return;
            }
        }
        pause_ = seconds(0);
    }

  private:
    void pause(const Outcome& outcome) {
        pause_ =
            isMendedByTrying(outcome) ? std::clamp(pause_ * 2, kFirstPause, kLongestPause) : kLongestPause;
        notBefore_ = Clock::now() + pause_;
        server_.reset(); // the next try begins anew, with the password as it is then
    }

    // Prints what is new: a trouble once, until it has passed or become another.
    void tell(const Outcome& outcome, const NamedBook& book) {
        std::string& told = troubles_[book.book.id];
        if (!outcome.trouble.empty()) {
            if (outcome.trouble != told) {
                complain(escaped(book.name + ": " + outcome.trouble) +
                         (outcome.isHeldBack ? "; addressbook sync asks about it" : ""));
            }
        } else if (!told.empty() || outcome.summary.refused.size() + outcome.summary.conflicts > 0 ||
                   describe(outcome.summary) != describe({})) {
            tellRefused(outcome.summary, book.name);
            std::cerr << escaped(book.name) << ": " << (told.empty() ? "" : "in step again; ")
                      << describe(outcome.summary) << std::endl;
        }
        told = outcome.trouble;
    }

    SyncAccount account_;
    std::unique_ptr<Server> server_;
    std::map<std::int64_t, std::string> troubles_; // by the book's id
    seconds pause_{0};
    Clock::time_point notBefore_;
};

// Opens the book, which must be there and may be written.
std::unique_ptr<Store> openForWatching(const Options& options) {
    auto store = std::make_unique<Store>(folder(options));
    if (store->readOnly()) {
        throw readOnlyError(store->file());
    }
    return store;
}

// Prints what is kept in step from now on.
void greet(const std::vector<AccountBooks>& chosen) {
    std::vector<std::string> names;
    for (const AccountBooks& account : chosen) {
        for (const NamedBook& book : account.books) {
            names.push_back(book.name);
        }
    }
    std::cerr << "keeping in step: " << escaped(listed(names)) << "; Ctrl-C ends it" << std::endl;
}

} // namespace

int keepInStep(const Options& options) {
    std::unique_ptr<Store> store = openForWatching(options);
    greet(chosenBooks(*store, options.sync.accounts));
    const Bell bell(*store);
    std::map<std::int64_t, Kept> kept; // by the account's id
    for (;;) {
        bell.silence();
        if (store->moved()) { // another book was put in its place
            store = openForWatching(options);
        }
        Clock::time_point next = Clock::now() + seconds(options.sync.watch);
        // Looked up each time: accounts come and go.
        for (const AccountBooks& chosen : chosenBooks(*store, options.sync.accounts)) {
            auto at = kept.try_emplace(chosen.account.id, chosen.account).first;
            if (at->second.account() != chosen.account) {
                kept.erase(at);
                at = kept.try_emplace(chosen.account.id, chosen.account).first;
            }
            if (at->second.notBefore() <= Clock::now()) {
                at->second.sync(*store, chosen, options);
            }
            if (at->second.notBefore() > Clock::now()) {
                next = std::min(next, at->second.notBefore());
            }
        }
        bell.wait(next - Clock::now());
    }
}

} // namespace addressbook::tool
