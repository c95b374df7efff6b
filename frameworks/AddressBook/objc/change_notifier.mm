#include "frameworks/AddressBook/objc/change_notifier.h"

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/store/watch.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <unistd.h>
#include <utility>

using namespace addressbook;

namespace {

// How long the exit of the process waits for an observer that is still running on the notifier's thread.
// Limited, as the observer may itself be waiting for the thread that exits.
constexpr std::chrono::seconds kLongestWaitAtExit{1};

void post(ABAddressBook* sender, const LoggedChange& change) {
    Book::invalidateAll();
    if (change.own) {
        return;
    }
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[NSNotificationCenter defaultCenter]
        postNotificationName:kABDatabaseChangedExternallyNotification
                      object:sender
                    userInfo:changeInfo(change.inserted, change.updated, change.deleted)];
    [pool release];
}

void log(const std::string& sentence) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSLog(@"AddressBook: %@", stringFrom(sentence));
    [pool release];
}

// The watch and the thread that runs it.
class ChangeNotifier {
  public:
    ChangeNotifier(ABAddressBook* sender, const Book& book)
        : watch_(book.file(), book.seenChange(),
                 {[sender](const LoggedChange& change) { post(sender, change); }, log}) {}

    // The thread's work.
    void run() {
        {
            const std::lock_guard<std::mutex> guard(lock_);
            thread_ = pthread_self();
            running_ = true;
        }
        watch_.run();
        const std::lock_guard<std::mutex> guard(lock_);
        ended_ = true;
        end_.notify_all();
    }

    // Stops the watch and waits for the thread, at most [patience] unless that is null.
    void stop(const std::chrono::seconds* patience) {
        if (process_ != getpid()) {
            return; // a forked child has no such thread
        }
        watch_.stop();
        std::unique_lock<std::mutex> guard(lock_);
        if (running_ && pthread_equal(thread_, pthread_self()) != 0) {
            return;
        }
        const auto ended = [this] { return ended_; };
        if (patience != nullptr) {
            end_.wait_until(guard, std::chrono::system_clock::now() + *patience, ended);
        } else {
            end_.wait(guard, ended);
        }
    }

  private:
    const pid_t process_ = getpid();
    Watch watch_;
    std::mutex lock_;
    std::condition_variable end_;
    pthread_t thread_{};
    bool running_ = false;
    bool ended_ = false;
};

// Never destroyed, as the thread may still run while the process exits.
std::shared_ptr<ChangeNotifier>& current() {
    static auto* notifier = new std::shared_ptr<ChangeNotifier>;
    return *notifier;
}

void stopAtExit() {
    if (const auto notifier = current()) {
        notifier->stop(&kLongestWaitAtExit);
    }
}

} // namespace

// The target of the notifier's NSThread, which retains it. Foundation must know all threads that use it, so
// that this cannot be a std::thread.
@interface ABChangeNotifierThread : NSObject {
    void* _notifier;
}
- (id)initWithNotifier:(const std::shared_ptr<ChangeNotifier>&)notifier;
- (void)run;
@end

@implementation ABChangeNotifierThread

- (id)initWithNotifier:(const std::shared_ptr<ChangeNotifier>&)notifier {
    if ((self = [super init]) != nil) {
        _notifier = new std::shared_ptr<ChangeNotifier>(notifier);
    }
    return self;
}

- (void)dealloc {
    delete static_cast<std::shared_ptr<ChangeNotifier>*>(_notifier);
    [super dealloc];
}

- (void)run {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    (*static_cast<std::shared_ptr<ChangeNotifier>*>(_notifier))->run();
    [pool release];
}

@end

namespace addressbook {
namespace {

void putUids(NSMutableDictionary* info, NSString* key, const std::vector<std::string>& uids) {
    if (uids.empty()) {
        return;
    }
    NSMutableArray* array = [NSMutableArray arrayWithCapacity:uids.size()];
    for (const auto& uid : uids) {
        [array addObject:stringFrom(uid)];
    }
    [info setObject:array forKey:key];
}

} // namespace

NSDictionary* changeInfo(const std::vector<std::string>& inserted, const std::vector<std::string>& updated,
                         const std::vector<std::string>& deleted) {
    NSMutableDictionary* info = [NSMutableDictionary dictionary];
    putUids(info, kABInsertedRecords, inserted);
    putUids(info, kABUpdatedRecords, updated);
    putUids(info, kABDeletedRecords, deleted);
    return info;
}

void startNotifying(ABAddressBook* sender, const Book& book) {
    try {
        current() = std::make_shared<ChangeNotifier>(sender, book);
    } catch (const StoreError& error) {
        log(error.what());
        return;
    }
    [[maybe_unused]] static const int registered = std::atexit(stopAtExit);
    ABChangeNotifierThread* thread = [[ABChangeNotifierThread alloc] initWithNotifier:current()];
    [NSThread detachNewThreadSelector:@selector(run) toTarget:thread withObject:nil];
    [thread release];
}

void stopNotifying() {
    if (const auto notifier = std::exchange(current(), nullptr)) {
        notifier->stop(nullptr);
    }
}

} // namespace addressbook
