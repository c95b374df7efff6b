#pragma once

// Support for the tests of external changes: another process, and a listener that records notifications.

#include "tests/framework/support.h"

#include <chrono>
#include <cstdio>
#include <mutex>
#include <sys/types.h>

// Another process that has the address book of the environment open; other_process.cpp describes its orders.
class OtherProcess {
  public:
    OtherProcess();
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Sends an order and returns the reply.
    std::string operator()(const std::string& order);
    void begin(const std::string& order);
    std::string answer();
    // Ends the process and returns its exit status. The destructor expects 0.
    int end();

  private:
    pid_t process_ = -1;
    std::FILE* orders_ = nullptr;
    std::FILE* answers_ = nullptr;
};

// Records every notification of external changes as text: "+ID" for each inserted record, "~ID" for each
// updated and "-ID" for each deleted one, "?" for a notification without records.
@interface ExternalListener : NSObject {
  @public
    std::mutex* _lock;
    std::vector<std::string>* _told;
    id _sender;
    bool _onThisThread;
    bool _raises;
    NSThread* _home;
}
- (void)changed:(NSNotification*)notification;
- (id)sender;
// Makes it raise an exception for each notification from now on.
- (void)raise;
- (bool)wasToldOnThisThread;
// Waits until [count] notifications have come, at most 30 seconds, and a moment longer for any unexpected
// ones. Returns and clears them.
- (std::vector<std::string>)wait:(std::size_t)count;
// Waits until [count] notifications have come, at most 30 seconds; returns whether they have. Clears nothing.
- (bool)comes:(std::size_t)count;
@end
