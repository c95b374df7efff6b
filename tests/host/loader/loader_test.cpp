#include "host/calc/parser.h"
#include "host/loader/plugin_host.h"
#include "host/values/text.h"
#include "host/wrapper/host_hooks.h"
#include "tests/support/temporary_folder.h"

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace host {
namespace {

namespace fs = std::filesystem;

const fs::path kPlugins = TEST_PLUGINS;

// A number that a test plug-in exports.
int exported(const fs::path& plugin, const char* name) {
    void* handle = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
    const int number = reinterpret_cast<int (*)()>(dlsym(handle, name))();
    dlclose(handle);
    return number;
}

class LoaderTest : public testing::Test {
  protected:
    LoaderTest()
        : host_(session_, steps_,
                [this](const std::u16string& file, const std::u16string& script, const Value& parameter) {
                    const std::lock_guard lock(mutex_);
                    started_.push_back(toUtf8(file) + "/" + toUtf8(script) + "/" +
                                       toUtf8(parameter.asText()));
                    return script == u"Missing" ? 104 : 0;
                }) {}

    // The result of a calculation as text, or "error " and the message.
    std::string run(const std::string& calculation) {
        try {
            return toUtf8(session_.evaluate(fromUtf8(calculation)).asText());
        } catch (const CalcError& error) {
            return std::string("error ") + error.what();
        }
    }

    std::string loadError(const fs::path& path, int version = kHostVersion) {
        try {
            LoadOptions options;
            options.hostVersion = version;
            lastPath_ = host_.load(path, options).path;
        } catch (const LoadError& error) {
            return error.what();
        }
        return "loaded";
    }

    void loadGood() { host_.load(kPlugins / "good_plugin.fmx"); }

    fs::path lastPath_; // of the plug-in that was loaded last
    std::mutex mutex_;
    std::vector<std::string> started_;
    Session session_;
    StepRegistry steps_;
    PluginHost host_;
};

TEST_F(LoaderTest, AsksForTheStringsAndKeepsTheFunctions) {
    const PluginInfo& info = host_.load(kPlugins / "good_plugin.fmx");
    EXPECT_EQ(info.name, u"Test plug-in");
    EXPECT_EQ(info.helpText, u"Helps testing.");
    EXPECT_EQ(info.options, u"TEST1nnYYnn");
    EXPECT_EQ(info.helpAddress, u"https://example.com/help");
    EXPECT_EQ(info.version, 54);
    EXPECT_EQ(info.path, kPlugins / "good_plugin.fmx");
    const auto functions = host_.functions();
    ASSERT_EQ(functions.size(), 19U);
    EXPECT_EQ(functions[2].plugin, u"TEST");
    EXPECT_EQ(functions[2].id, 2);
    EXPECT_EQ(functions[2].name, u"Test_Count");
    EXPECT_EQ(functions[2].prototype, u"Test_Count ( a ; b {; c } )");
    EXPECT_EQ(functions[2].minArguments, 2);
    EXPECT_EQ(functions[2].maxArguments, 3);
    EXPECT_EQ(functions[2].flags, 0xFF01U);
    EXPECT_EQ(functions[1].name, u"Test_Join"); // registered with a blank behind it
    EXPECT_EQ(functions[1].maxArguments, ExternalFunction::kAnyNumber);
    EXPECT_TRUE(host_.takeWarnings().empty());
    EXPECT_FALSE(host_.hasRefused());
    EXPECT_EQ(run("Test_Instance"), "77101");
}

TEST_F(LoaderTest, LoadsTheOnePluginOfAFolder) {
    const support::TemporaryFolder folder;
    EXPECT_EQ(loadError(folder.path()), "the folder " + folder.path().string() + " holds no .fmx file");
    fs::create_directory(folder.path() / "Resources");
    fs::copy_file(kPlugins / "good_plugin.fmx", folder.path() / "Some.fmx");
    EXPECT_EQ(loadError(folder.path()), "loaded");
    fs::copy_file(kPlugins / "good_plugin.fmx", folder.path() / "Other.fmx");
    EXPECT_EQ(loadError(folder.path()), "the folder " + folder.path().string() +
                                            " holds more than one .fmx file (Other.fmx, Some.fmx); name the "
                                            "one to load");
}

TEST_F(LoaderTest, LoadsThePluginOfABundle) {
    const support::TemporaryFolder folder;
    const fs::path bundle = folder.path() / "Some.fmplugin";
    fs::create_directories(bundle / "Contents/MacOS");
    EXPECT_EQ(loadError(bundle),
              "the bundle " + bundle.string() +
                  " holds no plug-in for Linux: it has no folder Contents/Resources/Linux");
    EXPECT_EQ(loadError(folder.path()), "the folder " + folder.path().string() + " holds no .fmx file");
    const fs::path inside = bundle / "Contents/Resources/Linux";
    fs::create_directories(inside);
    EXPECT_EQ(loadError(bundle), "the folder " + inside.string() + " holds no .fmx file");
    fs::copy_file(kPlugins / "good_plugin.fmx", inside / "Some.fmx");
    for (const fs::path& path : {bundle, bundle / "", inside / "Some.fmx", folder.path()}) {
        EXPECT_EQ(loadError(path), "loaded") << path;
        EXPECT_EQ(lastPath_, inside / "Some.fmx");
    }
}

// A library of that name whose head says that it is for something else.
TEST_F(LoaderTest, RefusesLibrariesOfOtherMachines) {
    const support::TemporaryFolder folder;
    const fs::path library = folder.path() / "Other.fmx";
    const auto expectFor = [&](const std::string& machine) {
        EXPECT_THAT(loadError(library),
                    testing::StartsWith("can not load " + library.string() + ": it is built for " + machine +
                                        ", this host for Linux on "));
    };
    const auto patch = [&](std::streamoff offset, const std::string& bytes) {
        fs::copy_file(kPlugins / "good_plugin.fmx", library, fs::copy_options::overwrite_existing);
        std::fstream(library, std::ios::in | std::ios::out | std::ios::binary)
            .seekp(offset)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    };
    patch(18, {'\x08', '\0'});
    expectFor("Linux on mips (64 bit)");
    patch(18, {'\x39', '\x30'});
    expectFor("Linux on processor 12345 (64 bit)");
    patch(4, "\x01");
    EXPECT_THAT(loadError(library), testing::HasSubstr(" (32 bit), this host for Linux on "));
    patch(0, "\xCF\xFA\xED\xFE");
    expectFor("macOS");
    patch(0, "\xCA\xFE\xBA\xBE");
    expectFor("macOS");
    patch(0, "MZ");
    expectFor("Windows");
}

// However much of a library is missing, it is refused or does not matter; nothing crashes.
TEST_F(LoaderTest, RefusesLibrariesThatAreCutShort) {
    const support::TemporaryFolder folder;
    const fs::path library = folder.path() / "Cut.fmx";
    const fs::path whole = kPlugins / "good_plugin.fmx";
    for (const uintmax_t size : {20'000U, 5000U, 1000U}) { // what lies behind its code does not matter
        SCOPED_TRACE(size);
        fs::copy_file(whole, library, fs::copy_options::overwrite_existing);
        fs::resize_file(library, size);
        EXPECT_EQ(loadError(library),
                  "can not load " + library.string() + ": it is cut short; copy it again");
    }
    fs::resize_file(library, 100); // not even its head
    EXPECT_THAT(loadError(library), testing::StartsWith("can not load " + library.string() + ": "));
}

TEST_F(LoaderTest, RefusesWhatIsNoPlugin) {
    EXPECT_EQ(loadError("/nowhere/at/all"), "there is no plug-in at /nowhere/at/all");
    const std::string noEntry = (kPlugins / "no_entry_plugin.fmx").string();
    EXPECT_EQ(loadError(noEntry), noEntry + " is no plug-in: it has no function FMExternCallProc");
    const support::TemporaryFolder folder;
    const fs::path text = folder.path() / "text.fmx";
    std::ofstream(text) << "no library";
    EXPECT_EQ(loadError(text), "can not load " + text.string() + ": file too short");
    EXPECT_EQ(loadError(fs::path("/proc/self/mem")).substr(0, 29), "can not load /proc/self/mem: ");
    EXPECT_EQ(loadError("/dev/null"), "can not load /dev/null: it is neither a file nor a folder");
    const std::string lonely = (kPlugins / "lonely_plugin.fmx").string();
    EXPECT_EQ(loadError(lonely),
              "can not load " + lonely +
                  ": libgone.so: cannot open shared object file: No such file or directory");
}

TEST_F(LoaderTest, HonoursTheAnswerToTheStartUp) {
    const auto message = [&](const char* name, const std::string& rest) {
        const std::string path = (kPlugins / (std::string(name) + ".fmx")).string();
        EXPECT_EQ(loadError(path, 53), "the plug-in " + path + " " + rest);
    };
    message("refusing_plugin", "refused version 53");
    message("not_enabled_plugin", "asked not to be enabled");
    message("silent_plugin", "answered the start-up with interface version 0; expected 4 to 255");
    message("throwing_plugin", "failed on message 0: no paper");
    message("throwing_int_plugin", "failed on message 0: it threw something that is no standard exception");
    EXPECT_TRUE(host_.functions().empty());
    EXPECT_EQ(run("Bad_Left"), "error there is no function or variable called Bad_Left");
    EXPECT_EQ(host_.load(kPlugins / "tired_plugin.fmx").version, 51);
}

TEST_F(LoaderTest, RefusesBadRegistrations) {
    host_.load(kPlugins / "bad_functions_plugin.fmx");
    const std::string file = (kPlugins / "bad_functions_plugin.fmx").string();
    const auto refusal = [&](const std::string& which, const std::string& reason) {
        return "the plug-in function " + which + " of " + file + " is not registered: " + reason;
    };
    EXPECT_EQ(
        host_.takeWarnings(),
        (std::vector{refusal("Bad_Backwards (TEST 1)", "it needs 3 arguments and can be given 1 at most"),
                     refusal("Bad_Negative (TEST 2)", "it needs -1 arguments"),
                     refusal("Left (TEST 3)", "the calculation language has a function of that name"),
                     refusal("(TEST 4)", "it has no name"),
                     refusal("bad_good (TEST 6)", "there is a function of that name already"),
                     refusal("Bad_Twice (TEST 5)", "its id is that of Bad_Good")}));
    EXPECT_TRUE(host_.hasRefused());
    ASSERT_EQ(host_.functions().size(), 1U);
    EXPECT_EQ(run("Left ( \"abc\" ; 2 ) & BAD_GOOD"), "ab");
}

TEST_F(LoaderTest, ValuesCrossUnchanged) {
    loadGood();
    for (const char* calculation :
         {"\"\"", "\"text 日本 😀\"", "\"a¶b\"", "0", "-12.5", "1 / 3", "12345678901234567890123456789.5",
          "Date ( 12 ; 25 ; 2010 )", "Time ( 1 ; 2 ; 3 )",
          "Timestamp ( Date ( 12 ; 25 ; 2010 ) ; Time ( 14 ; 30 ; 5 ) )", "GetAsNumber ( \"\" )",
          "\"a\" & HexDecode ( \"00\" ) & Char ( 55296 ) & \"b\" & Char ( 57343 )"}) {
        const Value direct = session_.evaluate(fromUtf8(calculation));
        const Value echoed = session_.evaluate(u"Test_Echo ( " + fromUtf8(calculation) + u" )");
        EXPECT_EQ(echoed.asText(), direct.asText()) << calculation;
        EXPECT_EQ(echoed.type(), direct.type()) << calculation;
    }
    EXPECT_EQ(
        run("Test_Type ( \"1\" ) & Test_Type ( 1 ) & Test_Type ( Date ( 1 ; 1 ; 1 ) ) & Test_Type ( 1 / 0 )"),
        "1230");
    const std::string megabyte(1'000'000, 'x');
    EXPECT_EQ(run("Test_Echo ( \"" + megabyte + "\" )"), megabyte);
}

TEST_F(LoaderTest, StylesCrossBothWays) {
    loadGood();
    EXPECT_EQ(
        run("Test_Style ( TextColor ( TextSize ( TextFont ( \"a\" ; \"Courier\" ) ; 9 ) ; 66051 ) ; 0 )"),
        "Courier 9 0 1 2 3");
    EXPECT_EQ(
        run("Let ( t = \"ab\" & TextStyleAdd ( \"cd\" ; Bold + Italic ) & \"e\" ; Test_Style ( t ; 1 ) & "
            "\"|\" & Test_Style ( t ; 2 ) & \"|\" & Test_Style ( t ; 3 ) & \"|\" & Test_Style ( t ; 4 ) )"),
        "Helvetica 12 0 0 0 0|Helvetica 12 768 0 0 0|Helvetica 12 768 0 0 0|Helvetica 12 0 0 0 0");
    EXPECT_EQ(run("GetAsCSS ( Test_Embolden ( \"abc\" ; 2 ) & \"d\" )"),
              "<span style=\"color: #FF0000;font-weight: bold;\">ab</span>cd");
    // What it says over what the text had, which the text keeps elsewhere; nothing stays for the next call.
    EXPECT_EQ(run("GetAsCSS ( Test_Embolden ( TextStyleAdd ( \"abc\" ; Underline ) ; 1 ) )"),
              "<span style=\"color: #FF0000;font-weight: bold;text-decoration: underline;\">a</span>"
              "<span style=\"text-decoration: underline;\">bc</span>");
    EXPECT_EQ(run("GetAsCSS ( Test_Echo ( \"abc\" ) ) & Test_Style ( \"abc\" ; 0 )"),
              "abcHelvetica 12 0 0 0 0");
    EXPECT_EQ(run("GetAsCSS ( Test_Echo ( TextFont ( \"x\" ; \"Courier\" ) & \"y\" ) )"),
              "<span style=\"font-family: 'Courier';\">x</span>y");
}

TEST_F(LoaderTest, ContainersCrossUnchanged) {
    loadGood();
    Container container;
    container.setFileNames(u"image:picture.png");
    container.setPictureSize(20, 10);
    container.set(StreamType::of("PNGf"), {0x89, 0x50, 0x4E, 0x47, 0x00, 0xFF});
    container.set(StreamType::of("NONE"), {});
    session_.setVariable(u"$picture", Value::container(container));
    EXPECT_EQ(run("Test_Type ( $picture )"), "6");
    EXPECT_EQ(session_.evaluate(u"Test_Echo ( $picture )").asContainer(), container);
}

TEST_F(LoaderTest, ArgumentCountsAreCheckedBeforeTheHandlerRuns) {
    loadGood();
    EXPECT_EQ(run("Test_Count ( 1 )"),
              "error Test_Count takes 2 to 3 arguments, 1 given: Test_Count ( a ; b {; c } )");
    EXPECT_EQ(run("Test_Count ( 1 ; 2 ; 3 ; 4 )"),
              "error Test_Count takes 2 to 3 arguments, 4 given: Test_Count ( a ; b {; c } )");
    EXPECT_EQ(run("Test_Count"),
              "error Test_Count takes 2 to 3 arguments, 0 given: Test_Count ( a ; b {; c } )");
    EXPECT_EQ(run("Test_Evaluate ( \"Test_Count ( 1 )\" )"), "1201");
    EXPECT_EQ(run("Test_Evaluate ( \"Test_Count ( 1 ; 2 ; 3 ; 4 )\" )"), "1202");
    const int before = std::stoi(run("Test_Count ( 1 ; 2 )"));
    EXPECT_EQ(run("Test_Count ( 1 ; 2 ; 3 )"), std::to_string(before + 1));
    EXPECT_EQ(run("Test_Join"), "");
    EXPECT_EQ(run("Test_Join ( )"), "");
    EXPECT_EQ(run("test_JOIN ( 1 ; \"b\" ; 3 ; 4 ; 5 ; 6 ; 7 ; 8 ; 9 )"), "1b3456789");
}

TEST_F(LoaderTest, WhatAHandlerThrowsEndsTheCalculationAlone) {
    loadGood();
    EXPECT_EQ(run("1 + Test_Throw ( \"runtime\" )"), "error Test_Throw failed: the printer is on fire");
    EXPECT_EQ(run("Test_Throw ( \"alloc\" )"), "error Test_Throw failed: out of memory");
    EXPECT_EQ(run("Test_Throw ( \"int\" )"),
              "error Test_Throw failed: it threw something that is no standard exception");
    EXPECT_EQ(run("Test_Throw ( \"host\" )"), "error Test_Throw failed: std::exception");
    EXPECT_EQ(run("Evaluate ( \"Test_Throw ( \\\"int\\\" )\" )"), "?");
    EXPECT_EQ(run("Test_Nested ( \"a\" ; \"Test_Throw ( \\\"runtime\\\" )\" )"), "?");
    EXPECT_EQ(run("Test_Echo ( 1 )"), "1");
}

TEST_F(LoaderTest, AFailureOfTheHostIsAFailedCall) {
    loadGood();
    FM_Host_FailNextCall(1);
    EXPECT_EQ(run("Test_Echo ( 1 )"), "error Test_Echo failed: out of memory");
    FM_Host_FailNextCall(2, 3);
    EXPECT_EQ(run("Test_Echo ( 1 )"), "error Test_Echo failed: std::exception");
    EXPECT_EQ(run("Test_Echo ( 1 )"), "1");
}

TEST_F(LoaderTest, AnErrorCodeOfAHandlerIsTheLastError) {
    loadGood();
    EXPECT_EQ(run("Test_Answer ( 7 ) & \"/\" & Get ( LastError )"), "?/7");
    EXPECT_EQ(run("Test_Answer ( 0 ) & \"/\" & Get ( LastError )"), "1/0");
}

TEST_F(LoaderTest, HandlersMayEvaluate) {
    loadGood();
    EXPECT_EQ(run("Test_Evaluate ( \"1 + 1\" )"), "2");
    EXPECT_EQ(run("Let ( $x = 5 ; Test_Evaluate ( \"$x * 2\" ) )"), "10");
    EXPECT_EQ(run("Test_Evaluate ( \"1 +\" )"), "1204");
    EXPECT_EQ(run("Test_Nested ( \"a\" ; \"Test_Nested ( \\\"b\\\" ; \\\"Test_Echo ( 1 )\\\" )\" )"), "ab1");
    EXPECT_EQ(run("Test_Join ( 1 ; Test_Join ( 2 ; Test_Join ( 3 ; 4 ) ) ; 5 )"), "12345");
    EXPECT_EQ(run("Let ( $code = \"Test_Evaluate ( $code )\" ; Test_Evaluate ( $code ) )"), "1200");
}

TEST_F(LoaderTest, AnyThreadMayStartScripts) {
    loadGood();
    const std::string calls = "Test_StartLater ( \"A\" ; 0 ) & Test_StartLater ( \"B\" ; 0 )";
    EXPECT_EQ(run(calls), "00");
    EXPECT_EQ(run("Test_StartWhenIdle ( \"C\" )"), "0");
    host_.idle(IdleLevel::userIdle);
    const auto isComplete = [&] {
        const std::lock_guard lock(mutex_);
        return started_.size() == 3;
    };
    for (int i = 0; i < 1000 && !isComplete(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const std::lock_guard lock(mutex_);
    EXPECT_THAT(started_, testing::UnorderedElementsAre("/A/", "/B/", "/C/"));
}

TEST_F(LoaderTest, HandlersMayStartScripts) {
    loadGood();
    EXPECT_EQ(run("Test_StartScript ( \"file\" ; \"Script\" ; 5 )"), "0");
    EXPECT_EQ(run("Test_StartScript ( \"\" ; \"Missing\" )"), "104");
    EXPECT_EQ(run("Test_StartScript"), "0"); // neither file nor script nor parameter
    EXPECT_EQ(started_, (std::vector<std::string>{"file/Script/5", "/Missing/", "//"}));
}

TEST_F(LoaderTest, AFunctionUnregisteredSinceIsNoLongerCalled) {
    loadGood();
    const Calculation calculation =
        parseCalculation(std::make_shared<Source>("", u"Test_Echo ( 1 )"), session_.functions());
    EXPECT_EQ(session_.evaluate(calculation).asText(), u"1");
    EXPECT_EQ(run("Test_Vanish ( 0 ) & Test_Vanish ( 0 )"), "01210");
    EXPECT_EQ(run("Test_Echo ( 1 )"), "error there is no function called Test_Echo");
    try {
        session_.evaluate(calculation);
        FAIL();
    } catch (const CalcError& error) {
        EXPECT_STREQ(error.what(), "Test_Echo is no longer registered");
    }
}

TEST_F(LoaderTest, IdleGoesToThePluginsThatAskForIt) {
    loadGood();
    const int before = std::stoi(run("Test_Idle")) / 10;
    host_.idle(IdleLevel::scriptRunning);
    host_.idle(IdleLevel::userIdle);
    EXPECT_EQ(run("Test_Idle"), std::to_string(before + 2) + "0");
    host_.takeWarnings();
    host_.load(kPlugins / "bad_functions_plugin.fmx"); // throws when it is idle, and does not ask to be
    host_.takeWarnings();
    host_.idle(IdleLevel::userIdle);
    EXPECT_TRUE(host_.takeWarnings().empty());
    host_.load(kPlugins / "tired_plugin.fmx");
    host_.takeWarnings();
    host_.idle(IdleLevel::userIdle);
    EXPECT_EQ(host_.takeWarnings(),
              std::vector<std::string>{"the plug-in " + (kPlugins / "tired_plugin.fmx").string() +
                                       " failed on message 1: too tired"});
}

TEST_F(LoaderTest, IdleDoesNotGoToAPluginThatRefused) {
    EXPECT_THAT(loadError(kPlugins / "refusing_plugin.fmx"), testing::HasSubstr("refused version"));
    host_.idle(IdleLevel::userIdle); // which it would throw at
    EXPECT_TRUE(host_.takeWarnings().empty());
}

TEST(LoaderLifeTest, EachMessageGoesToWhoAsksForIt) {
    const fs::path plugin = kPlugins / "session_plugin.fmx";
    void* handle = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    {
        Session session;
        StepRegistry steps;
        PluginHost host(session, steps, {});
        host.load(plugin);
        host.idle(IdleLevel::userIdle);
    }
    const auto messages = reinterpret_cast<const char* (*)()>(dlsym(handle, "testMessages"));
    EXPECT_STREQ(messages(), "1 9 8 "); // idle, the end of the file and of the session
    dlclose(handle);
}

TEST(LoaderLifeTest, TheEndShutsDownAndTakesTheFunctionsAway) {
    const fs::path plugin = kPlugins / "good_plugin.fmx";
    const int starts = exported(plugin, "testStarts");
    const int shutDowns = exported(plugin, "testShutDowns");
    Session session;
    StepRegistry steps;
    for (int i = 0; i < 2; ++i) {
        PluginHost host(session, steps, {});
        host.load(plugin);
        EXPECT_NE(session.functions().find(u"test_join"), nullptr);
        EXPECT_EQ(exported(plugin, "testStarts"), starts + i + 1);
        EXPECT_EQ(exported(plugin, "testShutDowns"), shutDowns + i);
    }
    EXPECT_EQ(exported(plugin, "testShutDowns"), shutDowns + 2);
    EXPECT_TRUE(session.functions().all().empty());
}

TEST(LoaderLifeTest, AProcessHasOneHostAtATime) {
    Session session;
    StepRegistry steps;
    {
        const PluginHost host(session, steps, {});
        EXPECT_THROW(PluginHost(session, steps, {}), std::logic_error);
    }
    EXPECT_NO_THROW(PluginHost(session, steps, {}));
}

} // namespace
} // namespace host
