#pragma once

#include "plugin/shell/entry.h"
#include "plugin/shell/handlers.h"
#include "plugin/support/host_interface.h"
#include "plugin/support/host_text.h"
#include "plugin/support/pool.h"
#include "tests/support/temporary_folder.h"
#import <AddressBook/AddressBook.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <string>

// The tests name what is the plug-in's as its own sources do.
using namespace koru;

// What the tests of the plug-in share: a message to the entry point, a call of a handler, and a fixture in
// which the plug-in has just been started and the address book, of the test run alone, is empty.

// UTF-8 of a string; "(nil)" of none.
std::string utf8(NSString* string);
NSString* string(const std::string& text);

// A message of the host, all zero but for the fields given, with the current interface version.
FMX_ExternCallStruct messageOf(int whichCall, int parm1 = 0);

// The answer in a message, by value: its place in the structure is not aligned, so that no reference may be
// bound to it.
inline fmx::ptrtype resultOf(const FMX_ExternCallStruct& message) {
    return message.result;
}

// An argument of a call.
OwnedData textData(const std::string& text);

// The arguments of a call.
OwnedDataVect vectorOf(std::initializer_list<std::string> arguments);

// Calls a handler with the id that the function table has for it, checks that it answers 0 and that the
// result is text, and answers that.
std::string call(HandlerFunction handler, std::initializer_list<std::string> arguments = {});

// The last error's message and number, as the last-error function gives them.
std::string lastErrorText();
std::string lastErrorNumber();

// A plug-in's bundle with the given string table.
class Bundle {
  public:
    explicit Bundle(const std::string& stringTable);
    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;
    // The host's name for it.
    [[nodiscard]] fmx::ptrtype instance() const { return reinterpret_cast<fmx::ptrtype>(handle_); }

  private:
    support::TemporaryFolder folder_;
    void* handle_ = nullptr;
};

class PluginTest : public testing::Test {
  protected:
    void SetUp() override;

    // A saved person or group.
    static ABPerson* addPerson(NSString* first, NSString* last);
    static ABGroup* addGroup(NSString* name);

    Pool pool_;
};
