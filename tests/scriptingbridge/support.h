#pragma once

// What the tests of the Scripting Bridge share.

#include "tests/scriptingbridge/test_bus.h"
#include "tests/support/raised.h"
#include "tests/support/temporary_folder.h"

#import <ScriptingBridge/ScriptingBridge.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

// What the application's scripting interface adds, declared as the plug-in declares it.
@protocol AddressBookApplication
- (SBElementArray*)people;
- (void)setSelection:(NSArray*)selection;
@end

inline constexpr const char* kDefaultName = "org.gnome.Contacts";

// Each test has a folder, a pool and a bus of its own, on which the application can be started but is not.
class ScriptingBridgeTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    void startBus(const std::string& activatable = kDefaultName);
    void stopBus() { bus_.reset(); }
    // Starts the stand-in and waits until it owns its name.
    void startApplication(const std::string& way = "answers", const std::string& name = kDefaultName);
    void stopApplication() { standIn_.reset(); }
    // What the stand-in was told, line by line.
    std::string record() const;

    static SBApplication* application() {
        return [SBApplication applicationWithBundleIdentifier:@"com.apple.AddressBook"];
    }
    // One that waits half a second only.
    static SBApplication* impatient();
    // Selects the person with that id and answers what goes wrong, "" for nothing; likewise for activating.
    static std::string select(SBApplication* application, id identifier);
    static std::string activate(SBApplication* application);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();

  private:
    std::unique_ptr<TestBus> bus_;
    std::unique_ptr<Child> standIn_;
};
