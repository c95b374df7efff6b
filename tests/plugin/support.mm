#include "tests/plugin/support.h"

#import "plugin/records/plugin_state.h"
#include "plugin/shell/entry.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>

namespace {

// Gives the whole test program a home and an address book of its own, before anything asks for them.
class Home : public testing::Environment {
  public:
    Home() {
        setenv("ADDRESSBOOK_HOME", (home_.path() / "book").c_str(), 1);
        setenv("TZ", "UTC", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        std::filesystem::create_directory(home_.path() / "book");
    }

  private:
    support::TemporaryHome home_;
};

[[maybe_unused]] testing::Environment* const home = testing::AddGlobalTestEnvironment(new Home);

short idOf(HandlerFunction handler) {
    for (const ExternalFunction& function : externalFunctions()) {
        if (function.handler == handler) {
            return function.id;
        }
    }
    ADD_FAILURE() << "the function is not in the table";
    return -1;
}

} // namespace

std::string utf8(NSString* string) {
    return string == nil ? "(nil)" : [string UTF8String];
}

NSString* string(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

FMX_ExternCallStruct messageOf(int whichCall, int parm1) {
    FMX_ExternCallStruct message{};
    message.extnVersion = 54;
    message.whichCall = static_cast<fmx::uchar>(whichCall);
    message.parm1 = static_cast<fmx::uchar>(parm1);
    return message;
}

OwnedData textData(const std::string& text) {
    OwnedText value;
    value->Assign(text.c_str(), fmx::Text::kEncoding_UTF8);
    OwnedData data;
    data->SetAsText(*value, data->GetLocale());
    return data;
}

OwnedDataVect vectorOf(std::initializer_list<std::string> arguments) {
    OwnedDataVect vector;
    for (const std::string& argument : arguments) {
        vector->PushBack(*textData(argument));
    }
    return vector;
}

std::string call(HandlerFunction handler, std::initializer_list<std::string> arguments) {
    const Pool pool;
    const OwnedExprEnv environment;
    const OwnedDataVect vector = vectorOf(arguments);
    const OwnedData result;
    EXPECT_EQ(handler(idOf(handler), *environment, *vector, *result), 0);
    EXPECT_EQ(result->GetNativeType(), fmx::Data::kDTText);
    NSString* text = stringFromText(result->GetAsText());
    return text == nil ? "" : utf8(text);
}

std::string lastErrorText() {
    return call(Do_KORU_GetLastError);
}

std::string lastErrorNumber() {
    return call(Do_KORU_GetLastError, {"NUM"});
}

Bundle::Bundle(const std::string& stringTable) {
    const auto strings = folder_.path() / "Resources" / "English.lproj";
    std::filesystem::create_directories(strings);
    std::ofstream(strings / "KORUFMPlugin.strings") << stringTable;
    const auto library = folder_.path() / "Probe.fmx";
    std::filesystem::copy_file(PROBE_LIBRARY, library);
    handle_ = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle_, nullptr) << dlerror();
}

Bundle::~Bundle() {
    dlclose(handle_);
}

void PluginTest::SetUp() {
    resetStateForTests();
    resetErrorsForTests();
    Do_Init();
    emptyBook();
}

void PluginTest::emptyBook() {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    ASSERT_NE(book, nil);
    for (NSArray* list : {[book people], [book groups]}) {
        for (NSUInteger i = 0; i < [list count]; ++i) {
            [book removeRecord:[list objectAtIndex:i]];
        }
    }
    [book setMe:nil];
    ASSERT_TRUE([book save]);
}

ABPerson* PluginTest::addPerson(NSString* first, NSString* last) {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    ABPerson* person = [[[ABPerson alloc] initWithAddressBook:book] autorelease];
    if (first != nil) {
        [person setValue:first forProperty:kABFirstNameProperty];
    }
    if (last != nil) {
        [person setValue:last forProperty:kABLastNameProperty];
    }
    EXPECT_TRUE([book addRecord:person]);
    EXPECT_TRUE([book save]);
    return person;
}

ABGroup* PluginTest::addGroup(NSString* name) {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    ABGroup* group = [[[ABGroup alloc] initWithAddressBook:book] autorelease];
    [group setValue:name forProperty:kABGroupNameProperty];
    EXPECT_TRUE([book addRecord:group]);
    EXPECT_TRUE([book save]);
    return group;
}
