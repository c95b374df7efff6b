#pragma once

// What the tests of external changes need: the other process, and somebody who keeps the notifications.

#include "tests/framework/support.h"

#include <chrono>
#include <cstdio>
#include <mutex>
#include <sys/types.h>

// A process of its own that has the address book of the environment open; see other_process.cpp for what it
// is told.
class OtherProcess {
  public:
    OtherProcess();
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Gives an order, and answers its answer.
    std::string operator()(const std::string& order);
    void begin(const std::string& order);
    std::string answer();
    // Lets it end; answers how it did, 0 when all went well. The destructor expects that.
    int end();

  private:
    pid_t process_ = -1;
    std::FILE* orders_ = nullptr;
    std::FILE* answers_ = nullptr;
};

// Keeps every notification of external changes in short: "+ID" for each inserted record, "~ID" for each
// updated,
// "-ID" for each deleted, "?" for a notification that names none.
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
// From now on it raises an exception whenever it is told.
- (void)raise;
- (bool)wasToldOnThisThread;
// Waits until so many came, at most 30 seconds, and a moment longer for some that should not; answers them.
- (std::vector<std::string>)wait:(std::size_t)count;
// The same without the moment longer; nothing is forgotten.
- (bool)comes:(std::size_t)count;
@end
