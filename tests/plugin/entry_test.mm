#include "plugin/shell/entry.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/idle_double.h"
#include "tests/plugin/support.h"
#include <numeric>

namespace {

constexpr fmx::ptrtype kUntouched = 0x5EED;
constexpr auto kRefused = static_cast<fmx::ptrtype>(-1);

class EntryTest : public testing::Test {
  protected:
    EntryTest() {
        host_double::reset();
        resetErrorsForTests();
        resetStateForTests();
    }
    ~EntryTest() override {
        host_double::reset();
        gFMX_ExternCallPtr = nullptr;
    }

    static FMX_ExternCallStruct send(FMX_ExternCallStruct message) {
        message.result = kUntouched;
        FMExternCallProc(&message);
        return message;
    }

    static FMX_ExternCallStruct startUp(int version) {
        FMX_ExternCallStruct message = messageOf(kFMXT_Init);
        message.extnVersion = static_cast<fmx::int16>(version);
        return send(message);
    }

    Pool pool_;
};

TEST_F(EntryTest, VersionsFrom50To255AreAcceptedAndAnswered54) {
    for (const int version : {50, 54, 63, 255}) {
        EXPECT_EQ(resultOf(startUp(version)), 54U) << version;
        EXPECT_EQ(host_double::registrations().size(), externalFunctions().size());
        host_double::reset();
    }
}

TEST_F(EntryTest, OtherVersionsAreRefusedAndNothingHappens) {
    for (const int version : {49, 256, 0, -1, 32767, -32768, 306}) {
        EXPECT_EQ(resultOf(startUp(version)), kRefused) << version;
        EXPECT_TRUE(host_double::registrations().empty()) << version;
        EXPECT_EQ(errors.error, nil) << version;
    }
}

TEST_F(EntryTest, FunctionsAreRegisteredAsTheTableSays) {
    EXPECT_EQ(resultOf(startUp(54)), 54U);
    const auto& registrations = host_double::registrations();
    ASSERT_EQ(registrations.size(), externalFunctions().size());
    for (std::size_t i = 0; i < registrations.size(); ++i) {
        const auto& registration = registrations[i];
        const ExternalFunction& function = externalFunctions()[i];
        EXPECT_EQ(registration.plugin, "KORU");
        EXPECT_EQ(registration.id, function.id);
        EXPECT_EQ(registration.minArguments, function.minArguments);
        EXPECT_EQ(registration.maxArguments, function.maxArguments);
        EXPECT_EQ(registration.flags, 0xFF01U);
        EXPECT_EQ(registration.function, function.handler);
        if (i > 0) {
            EXPECT_LT(registrations[i - 1].id, registration.id);
        }
    }
}

TEST_F(EntryTest, TheFunctionsAndTheirRanges) {
    struct Row {
        short id;
        unsigned long stringId;
        short minArguments;
        short maxArguments;
        fmx::ExtPluginType handler;
    };
    const Row expected[] = {
        {0, 204, 0, 1, Do_KORU_Version},
        {3, 207, 1, 1, Do_KORU_Delete},
        {4, 208, 6, 7, Do_KORU_Search},
        {5, 209, 0, 1, Do_KORU_OpenFirstRecord},
        {6, 210, 0, 1, Do_KORU_OpenNextRecord},
        {7, 211, 1, 1, Do_KORU_Open},
        {8, 212, 1, 3, Do_KORU_New},
        {9, 213, 0, 1, Do_KORU_Save},
        {10, 214, 0, 0, Do_KORU_GetFirstParentID},
        {11, 215, 0, 0, Do_KORU_GetNextParentID},
        {12, 216, 2, 4, Do_KORU_CompareProperty},
        {13, 217, 1, 2, Do_KORU_GetValueForProperty},
        {14, 218, 1, 2, Do_KORU_OpenFirstMVProperty},
        {15, 219, 0, 0, Do_KORU_OpenNextMVProperty},
        {16, 220, 2, 4, Do_KORU_GetValueForUID},
        {17, 221, 2, 3, Do_KORU_SetValueForProperty},
        {18, 222, 3, 5, Do_KORU_SetValueForUID},
        {19, 223, 2, 3, Do_KORU_GetLabelForUID},
        {20, 224, 3, 4, Do_KORU_SetLabelForUID},
        {22, 226, 1, 2, Do_KORU_DeleteValueForProperty},
        {23, 227, 2, 3, Do_KORU_DeleteValueForUID},
        {24, 228, 1, 1, Do_KORU_AddPerson},
        {25, 229, 1, 1, Do_KORU_RemovePerson},
        {26, 230, 1, 1, Do_KORU_AddSubgroup},
        {27, 231, 1, 1, Do_KORU_RemoveSubgroup},
        {28, 232, 0, 0, Do_KORU_GetFirstMemberID},
        {29, 233, 0, 0, Do_KORU_GetNextMemberID},
        {30, 234, 0, 0, Do_KORU_GetFirstSubgroupID},
        {31, 235, 0, 0, Do_KORU_GetNextSubgroupID},
        {32, 236, 3, 4, Do_KORU_AddMV},
        {33, 237, 7, 7, Do_KORU_AddAddress},
        {34, 238, 0, 1, Do_KORU_GetLastError},
        {35, 239, 2, 2, Do_KORU_AddCustomField},
        {36, 240, 2, 2, Do_KORU_RemoveCustomField},
        {37, 241, 3, 3, Do_KORU_SetCustomField},
        {38, 242, 2, 2, Do_KORU_GetCustomField},
        {39, 243, 0, 0, Do_KORU_GetImage},
        {40, 244, 1, 1, Do_KORU_SetImage},
        {41, 245, 3, 3, Do_KORU_GetListOfValues},
        {42, 246, 3, 3, Do_KORU_ClearAll},
        {43, 247, 1, 1, Do_KORU_Display},
        {45, 249, 0, 0, Do_KORU_Reload},
    };
    ASSERT_EQ(externalFunctions().size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const ExternalFunction& function = externalFunctions()[i];
        EXPECT_EQ(function.id, expected[i].id);
        EXPECT_EQ(stringIdOf(function.id), expected[i].stringId);
        EXPECT_EQ(function.minArguments, expected[i].minArguments) << function.id;
        EXPECT_EQ(function.maxArguments, expected[i].maxArguments) << function.id;
        EXPECT_EQ(function.handler, expected[i].handler) << function.id;
    }
}

TEST_F(EntryTest, OnlyTheUsersIdlenessCallsTheHook) {
    const int before = idle_double::calls();
    for (const int level : {1, 2, 3, 4, 255}) {
        send(messageOf(kFMXT_Idle, level));
    }
    EXPECT_EQ(idle_double::calls(), before);
    send(messageOf(kFMXT_Idle, 0));
    EXPECT_EQ(idle_double::calls(), before + 1);
}

TEST_F(EntryTest, OnlyTheUsersIdlenessTurnsTheRunLoop) {
    NSMutableArray* turns = [NSMutableArray array];
    [[NSRunLoop currentRunLoop] performSelector:@selector(addObject:)
                                         target:turns
                                       argument:@"turn"
                                          order:0
                                          modes:[NSArray arrayWithObject:NSDefaultRunLoopMode]];
    for (const int level : {1, 2, 3, 4, 255}) {
        send(messageOf(kFMXT_Idle, level));
    }
    EXPECT_EQ([turns count], 0U);
    send(messageOf(kFMXT_Idle, 0));
    EXPECT_EQ([turns count], 1U);
}

TEST_F(EntryTest, NamesAndPrototypesComeFromTheBundlesStrings) {
    const Bundle bundle(
        "\"KORUFMPlugin 204\" = \"Version ( {format} )\";\n\"KORUFMPlugin 207\" = \"Delete\";\n");
    FMX_ExternCallStruct message = messageOf(kFMXT_Init);
    message.instanceID = bundle.instance();
    EXPECT_EQ(resultOf(send(message)), 54U);
    ASSERT_GE(host_double::registrations().size(), 3U);
    EXPECT_EQ(host_double::registrations()[0].name, "Version ");
    EXPECT_EQ(host_double::registrations()[0].prototype, "Version ( {format} )");
    EXPECT_EQ(host_double::registrations()[1].name, "Delete");
    EXPECT_EQ(host_double::registrations()[1].prototype, "Delete");
    EXPECT_EQ(host_double::registrations()[2].name, "");
}

TEST_F(EntryTest, StartUpMakesTheErrorObjectAndResetsTheSearchType) {
    state.g_lastSearchType = kGroupType;
    startUp(54);
    ASSERT_NE(errors.error, nil);
    EXPECT_EQ(utf8([errors.error getError]), "Success");
    EXPECT_EQ(state.g_lastSearchType, kPersonType);
}

TEST_F(EntryTest, StartUpForgetsTheExceptionTextWithoutReleasingIt) {
    NSString* text = [[NSMutableString alloc] initWithString:@"held elsewhere, too"];
    errors.g_sExceptionTxt = Retained<NSString>::retain(text);
    startUp(54);
    EXPECT_EQ(errors.g_sExceptionTxt.get(), nil);
    EXPECT_EQ([text retainCount], 2U);
    [text release];
    [text release];
}

TEST_F(EntryTest, ShutDownUnregistersInItsOwnOrder) {
    const auto answer = send(messageOf(kFMXT_Shutdown));
    EXPECT_EQ(resultOf(answer), kUntouched);
    std::vector<std::pair<std::string, short>> expected;
    for (short number = 0; number <= 34; ++number) {
        expected.emplace_back("KORU", number);
    }
    for (const int number : {45, 39, 40, 35, 36, 37, 38, 41, 42, 43}) {
        expected.emplace_back("KORU", static_cast<short>(number));
    }
    EXPECT_EQ(host_double::unregistrations(), expected);
}

TEST_F(EntryTest, ShutDownTearsNothingDown) {
    startUp(54);
    koru_PluginError* error = errors.error;
    state.g_searchelement = Retained<ABSearchElement>::adopt([[ABSearchElement alloc] init]);
    send(messageOf(kFMXT_Shutdown));
    EXPECT_EQ(errors.error, error);
    EXPECT_TRUE(state.g_searchelement);
    resetStateForTests();
}

TEST_F(EntryTest, OtherMessagesLeaveTheResultAlone) {
    for (const int code : {2, 3, 5, 6, 8, 9, 10, 255}) {
        EXPECT_EQ(resultOf(send(messageOf(code))), kUntouched) << code;
    }
    for (int level = 0; level <= 4; ++level) {
        EXPECT_EQ(resultOf(send(messageOf(kFMXT_Idle, level))), kUntouched) << level;
    }
    EXPECT_TRUE(host_double::registrations().empty());
    EXPECT_TRUE(host_double::unregistrations().empty());
}

TEST_F(EntryTest, EveryMessageIsKeptBeforeAnythingElse) {
    FMX_ExternCallStruct message = messageOf(6);
    FMExternCallProc(&message);
    EXPECT_EQ(gFMX_ExternCallPtr, &message);
}

TEST_F(EntryTest, AFailureOfTheHostEndsTheMessageAndReleasesWhatWasMade) {
    const int before = host_double::livingObjects();
    int failures = 0;
    for (int calls = 0;; ++calls) {
        resetErrorsForTests();
        host_double::failAfter(calls, 1 + calls % 2);
        FMX_ExternCallStruct message = messageOf(kFMXT_Init);
        message.result = kUntouched;
        try {
            FMExternCallProc(&message);
            EXPECT_FALSE(host_double::hasFailed());
            break;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(calls % 2, 0);
        } catch (const std::exception&) {
            EXPECT_EQ(calls % 2, 1);
        }
        ++failures;
        EXPECT_EQ(resultOf(message), kUntouched);
        EXPECT_EQ(errors.error, nil);
        EXPECT_EQ(host_double::livingObjects(), before) << "after " << calls << " calls";
    }
    EXPECT_GT(failures, 3 * static_cast<int>(externalFunctions().size()));
    EXPECT_EQ(host_double::livingObjects(), before);
}

TEST_F(EntryTest, AFailureOfTheHostEndsTheShutDown) {
    const int before = host_double::livingObjects();
    host_double::failAfter(10, 2); // the identifier, then nine ids
    FMX_ExternCallStruct message = messageOf(kFMXT_Shutdown);
    EXPECT_THROW(FMExternCallProc(&message), std::exception);
    EXPECT_EQ(host_double::unregistrations().size(), 9U);
    EXPECT_EQ(host_double::livingObjects(), before);
}

} // namespace
