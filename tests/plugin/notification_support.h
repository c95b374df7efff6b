#pragma once

#import "plugin/notify/update_script.h"
#include "tests/plugin/support.h"
#include <functional>
#include <thread>
#include <vector>

// Support for the tests of change notifications: a host that records which scripts it is asked to start, and
// notifications of every kind, from this thread and from others.

// A start of a script that the host was asked for.
struct Start {
    std::string file;
    std::string script;
    int control;
    std::string parameter;
    std::thread::id thread;

    bool operator==(const Start&) const = default;
};

// The starts in this test, what is run in each of them, and the error code that the host returns.
extern std::vector<Start> starts;
extern std::function<void()> duringStart;
extern fmx::errcode startAnswer;

// Returns the parameters of the starts.
std::vector<std::string> parameters();

// Returns a notification's user info: identifiers for each kind of change, nil for none.
NSDictionary* changes(NSArray* inserted, NSArray* updated, NSArray* deleted);
NSArray* ids(NSString* first, NSString* second = nil);

// Returns a notification of an external change.
NSNotification* notificationOf(NSDictionary* changes);

// Posts a notification; exceptions that this raises are logged.
void post(NSDictionary* changes);

// Posts notifications on another thread, one for each number.
void postElsewhere(int first, int count);

// Runs the run loop until nothing is due.
void turnLoop();

// Registers the script to start; returns the function's result.
std::string registerScript(const std::string& file, const std::string& script);

// A test that begins without a listener.
class NotificationTest : public PluginTest {
  protected:
    void SetUp() override;
    ~NotificationTest() override;

    FMX_ExternCallStruct message_ = messageOf(kFMXT_Idle, 0);
};
