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

// The tests use the plug-in's names without a prefix, as its own sources do.
using namespace koru;

// Support for the tests of the plug-in: messages to the entry point, calls of handlers, and a fixture with a
// plug-in that has just been started and an empty address book of its own.

// Returns a string in UTF-8; "(nil)" for nil.
std::string utf8(NSString* string);
NSString* string(const std::string& text);

// Returns a message of the host with the current interface version; all other fields but those given are 0.
FMX_ExternCallStruct messageOf(int whichCall, int parm1 = 0);

// Returns the result in a message by value: the field is not aligned, so that no reference may be bound to
// it.
inline fmx::ptrtype resultOf(const FMX_ExternCallStruct& message) {
    return message.result;
}

// Returns a text as an argument of a call.
OwnedData textData(const std::string& text);

// Returns the arguments of a call.
OwnedDataVect vectorOf(std::initializer_list<std::string> arguments);

// Calls a handler with its id in the function table, expects that it returns 0 and that the result is text,
// and returns the text.
std::string call(HandlerFunction handler, std::initializer_list<std::string> arguments = {});

// Return the last error's message and number, by the last-error function.
std::string lastErrorText();
std::string lastErrorNumber();

// A bundle of a plug-in with the given string table.
class Bundle {
  public:
    explicit Bundle(const std::string& stringTable);
    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;
    // Returns the instance by which the host refers to it.
    [[nodiscard]] fmx::ptrtype instance() const { return reinterpret_cast<fmx::ptrtype>(handle_); }

  private:
    support::TemporaryFolder folder_;
    void* handle_ = nullptr;
};

class PluginTest : public testing::Test {
  protected:
    void SetUp() override;

    // Removes all records, and saves that.
    static void emptyBook();

    // Add and save a person or a group, and return it.
    static ABPerson* addPerson(NSString* first, NSString* last);
    static ABGroup* addGroup(NSString* name);

    Pool pool_;
};
