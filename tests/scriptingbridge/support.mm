#include "tests/scriptingbridge/support.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace {

// Runs [work] and answers the reason of the exception that it raised; empty when it raised none.
template <typename Work>
std::string reason(Work work) {
    NSException* exception = exceptionOf([](void* context) { (*static_cast<Work*>(context))(); }, &work);
    return exception != nil ? [[exception reason] UTF8String] : "";
}

} // namespace

void ScriptingBridgeTest::SetUp() {
    pool_ = [[NSAutoreleasePool alloc] init];
    std::string pattern = std::filesystem::temp_directory_path() / "scriptingbridge-test-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    ::setenv("HOME", folder_.c_str(), 1);
    ::unsetenv("ADDRESSBOOK_APPLICATION");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::unsetenv("XDG_RUNTIME_DIR");
}

void ScriptingBridgeTest::TearDown() {
    standIn_.reset();
    bus_.reset();
    [pool_ release];
    // The bus takes its socket away when it has had time to.
    std::error_code failed;
    for (int i = 0; i < 100 && (std::filesystem::remove_all(folder_, failed), failed); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(failed) << failed.message();
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
