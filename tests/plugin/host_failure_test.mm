#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/pictures.h"
#include "tests/plugin/support.h"

namespace {

// Each function with arguments that let it succeed.
struct GoodCall {
    HandlerFunction* handler;
    std::vector<std::string> arguments;
};

class HostFailureTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        id_ = utf8([addPerson(@"Anna", @"Smith") uniqueId]);
        phone_ = (call(Do_KORU_Open, {id_}), call(Do_KORU_AddMV, {"phone", "1", "home"}));
        date_ = call(Do_KORU_AddMV, {"dates", "25 December 2010", "anniversary"});
        prepare();
    }
    ~HostFailureTest() override { host_double::reset(); }

    void prepare() {
        call(Do_KORU_Search, {"person", "lastname", "", "", "Smith", "Equal"});
        call(Do_KORU_Open, {id_});
        call(Do_KORU_SetValueForProperty, {"birthday", "25 December 2010"});
        [state.g_person.get() setImageData:dataOf(bmp(3, 2))];
    }

    std::vector<GoodCall> calls() const {
        return {
            {Do_KORU_Version, {"long"}},
            {Do_KORU_GetLastError, {"NUM"}},
            {Do_KORU_Search, {"person", "lastname", "", "", "Smith", "Equal", "expand"}},
            {Do_KORU_OpenFirstRecord, {"person"}},
            {Do_KORU_OpenNextRecord, {"person"}},
            {Do_KORU_Open, {id_}},
            {Do_KORU_New, {"group", "Harbour"}},
            {Do_KORU_Save, {}},
            {Do_KORU_Delete, {"nobody"}},
            {Do_KORU_ClearAll, {"", "nothing", "1"}},
            {Do_KORU_GetValueForProperty, {"birthday", "person"}},
            {Do_KORU_GetValueForProperty, {"firstname", "person"}},
            {Do_KORU_SetValueForProperty, {"note", "x", "person"}},
            {Do_KORU_DeleteValueForProperty, {"note", "person"}},
            {Do_KORU_OpenFirstMVProperty, {"phone", "person"}},
            {Do_KORU_OpenNextMVProperty, {}},
            {Do_KORU_GetValueForUID, {"phone", phone_}},
            {Do_KORU_GetValueForUID, {"dates", date_}},
            {Do_KORU_SetValueForUID, {"phone", phone_, "2", ""}},
            {Do_KORU_GetLabelForUID, {"phone", phone_}},
            {Do_KORU_SetLabelForUID, {"phone", phone_, "work"}},
            {Do_KORU_DeleteValueForUID, {"phone", "nothing", ""}},
            {Do_KORU_AddMV, {"phone", "3", "home"}},
            {Do_KORU_AddAddress, {"home", "", "Bristol", "", "", "", "gb"}},
            {Do_KORU_CompareProperty, {"phone", "2", phone_, ""}},
            {Do_KORU_GetListOfValues, {"person", "groups", "UID"}},
            {Do_KORU_GetFirstParentID, {}},
            {Do_KORU_GetNextParentID, {}},
            {Do_KORU_GetFirstMemberID, {}},
            {Do_KORU_GetNextMemberID, {}},
            {Do_KORU_GetFirstSubgroupID, {}},
            {Do_KORU_GetNextSubgroupID, {}},
            {Do_KORU_AddPerson, {id_}},
            {Do_KORU_RemovePerson, {id_}},
            {Do_KORU_AddSubgroup, {id_}},
            {Do_KORU_RemoveSubgroup, {id_}},
            {Do_KORU_Display, {id_}},
            {Do_KORU_GetImage, {}},
            {Do_KORU_SetImage, {""}},
            {Do_KORU_AddCustomField, {"person", "Customer"}},
            {Do_KORU_RemoveCustomField, {"person", "Customer"}},
            {Do_KORU_SetCustomField, {"person", "Customer", "1"}},
            {Do_KORU_GetCustomField, {"person", "Customer"}},
        };
    }

    std::string id_;
    std::string phone_; // identifiers of entries
    std::string date_;
};

short idOf(HandlerFunction* handler) {
    for (const ExternalFunction& function : externalFunctions()) {
        if (function.handler == handler) {
            return function.id;
        }
    }
    return -1;
}

TEST_F(HostFailureTest, EveryFunctionHasAGoodCall) {
    for (const ExternalFunction& function : externalFunctions()) {
        const auto all = calls();
        if (function.handler == Do_KORU_Reload) {
            continue; // ends the process
        }
        EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const GoodCall& good) {
            return good.handler == function.handler;
        })) << function.id;
    }
}

// Each call of the host that a function makes fails once, with either code: the exception passes, nothing of
// the host's stays behind, and the next call works.
TEST_F(HostFailureTest, AFailureOfTheHostPassesAndLeavesNothingBehind) {
    const OwnedExprEnv environment;
    for (const GoodCall& good : calls()) {
        const short function = idOf(good.handler);
        OwnedDataVect arguments;
        for (const std::string& argument : good.arguments) {
            arguments->PushBack(*textData(argument));
        }
        int failures = 0;
        for (int before = 0;; ++before) {
            const OwnedData result;
            const int living = host_double::livingObjects();
            host_double::failAfter(before, 1 + before % 2);
            bool noMemory = false;
            bool unknown = false;
            try {
                EXPECT_EQ(good.handler(function, *environment, *arguments, *result), 0);
            } catch (const std::bad_alloc&) {
                noMemory = true;
            } catch (const std::exception&) {
                unknown = true;
            }
            const bool failed = host_double::hasFailed();
            host_double::reset();
            EXPECT_EQ(host_double::livingObjects(), living) << "function " << function << ", call " << before;
            EXPECT_EQ(noMemory, failed && before % 2 == 0) << "function " << function << ", call " << before;
            EXPECT_EQ(unknown, failed && before % 2 == 1) << "function " << function << ", call " << before;
            if (!failed) {
                break;
            }
            ++failures;
            EXPECT_EQ(call(Do_KORU_Version), "3.0.3.1");
            prepare();
        }
        EXPECT_GE(failures, 2) << "function " << function;
    }
}

} // namespace
