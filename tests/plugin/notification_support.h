#pragma once

#import "plugin/notify/update_script.h"
#include "tests/plugin/support.h"
#include <functional>
#include <thread>
#include <vector>

// What the tests of change notifications share: a host that notes which scripts it is asked to start, and
// notifications of every kind, from this thread and from others.

// One start of a script, as the host was asked for it.
struct Start {
    std::string file;
    std::string script;
    int control;
    std::string parameter;
    std::thread::id thread;

    bool operator==(const Start&) const = default;
};

// The starts of the test, what is done in each of them, and what the host answers to them.
extern std::vector<Start> starts;
extern std::function<void()> duringStart;
extern fmx::errcode startAnswer;

// The starts' parameters.
std::vector<std::string> parameters();

// A notification's information: identifiers for each kind of change, nil for none.
NSDictionary* changes(NSArray* inserted, NSArray* updated, NSArray* deleted);
NSArray* ids(NSString* first, NSString* second = nil);

// An external change's notification.
NSNotification* notificationOf(NSDictionary* changes);

// Posts it; what it raises goes to the log.
void post(NSDictionary* changes);

// Posts on a thread of its own, one notification for each number.
void postElsewhere(int first, int count);

// Turns the run loop until it has nothing to do any more.
void turnLoop();

// Names the script to start.
std::string registerScript(const std::string& file, const std::string& script);

// No listener is there when a test begins.
class NotificationTest : public PluginTest {
  protected:
    void SetUp() override;
    ~NotificationTest() override;

    FMX_ExternCallStruct message_ = messageOf(kFMXT_Idle, 0);
};
