#pragma once

// Support for the tests of the Scripting Bridge.

#include "tests/scriptingbridge/test_bus.h"
#include "tests/support/raised.h"
#include "tests/support/temporary_folder.h"

#import <ScriptingBridge/ScriptingBridge.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

// The application's scripting interface, declared as in the plug-in.
@protocol AddressBookApplication
- (SBElementArray*)people;
- (void)setSelection:(NSArray*)selection;
@end

inline constexpr const char* kDefaultName = "org.gnome.Contacts";

// A test with a temporary folder and a session bus, on which the application could be started by the bus but
// is not.
class ScriptingBridgeTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    void startBus(const std::string& activatable = kDefaultName);
    void stopBus() { bus_.reset(); }
    // Starts the stand-in and waits until it owns its name.
    void startApplication(const std::string& way = "answers", const std::string& name = kDefaultName);
    void stopApplication() { standIn_.reset(); }
    // Returns what the stand-in has recorded, line by line.
    std::string record() const;

    static SBApplication* application() {
        return [SBApplication applicationWithBundleIdentifier:@"com.apple.AddressBook"];
    }
    // Returns an application with a time-out of half a second.
    static SBApplication* impatient();
    // Select the person with an id, and activate the application. Return what went wrong, "" for nothing.
    static std::string select(SBApplication* application, id identifier);
    static std::string activate(SBApplication* application);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();

  private:
    std::unique_ptr<TestBus> bus_;
    std::unique_ptr<Child> standIn_;
};
