#include "tests/scriptingbridge/support.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace {

// Runs [work] and answers the reason of the exception that it raised; empty when it raised none.
template <typename Work>
std::string reason(Work work) {
    NSException* exception = raised(work);
    return exception != nil ? [[exception reason] UTF8String] : "";
}

} // namespace

void ScriptingBridgeTest::SetUp() {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void ScriptingBridgeTest::TearDown() {
    standIn_.reset();
    bus_.reset();
}

void ScriptingBridgeTest::startBus(const std::string& activatable) {
    bus_ = std::make_unique<TestBus>(folder_, activatable, folder_ / "record");
}

void ScriptingBridgeTest::startApplication(const std::string& way, const std::string& name) {
    standIn_ =
        std::make_unique<Child>(std::vector<std::string>{STAND_IN, name, (folder_ / "record").string(), way});
    ASSERT_EQ(standIn_->line(), "ready");
}

std::string ScriptingBridgeTest::record() const {
    std::ostringstream text;
    text << std::ifstream(folder_ / "record").rdbuf();
    return text.str();
}

SBApplication* ScriptingBridgeTest::impatient() {
    SBApplication* result = application();
    [result setTimeout:30];
    return result;
}

std::string ScriptingBridgeTest::select(SBApplication* application, id identifier) {
    id<AddressBookApplication> book = (id<AddressBookApplication>)application;
    return reason(
        [&] { [book setSelection:[NSArray arrayWithObject:[[book people] objectWithID:identifier]]]; });
}

std::string ScriptingBridgeTest::activate(SBApplication* application) {
    return reason([&] { [application activate]; });
}
