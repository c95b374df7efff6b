#include "tests/host/wrapper/support.h"

#include "host/wrapper/host_hooks.h"

#include <stdexcept>

namespace {

using fmx::DataUniquePtr;

void push(fmx::DataVect& vector, std::u16string_view text) {
    const DataUniquePtr data;
    data->SetAsText(*hostText(text), data->GetLocale());
    vector.PushBack(*data);
}

TEST(WrapperDataVectTest, HoldsCopiesInOrder) {
    const fmx::DataVectUniquePtr vector;
    EXPECT_TRUE(vector->IsEmpty());
    EXPECT_EQ(vector->PopBack(), nullptr);
    push(*vector, u"12/25/2010");
    push(*vector, u"1:02:03");
    const fmx::Data& first = vector->At(0);
    for (int i = 0; i < 1000; ++i) {
        push(*vector, u"0");
    }
    EXPECT_EQ(&vector->At(0), &first); // values stay where they are
    EXPECT_EQ(vector->Size(), 1002U);
    EXPECT_FALSE(vector->IsEmpty());
    EXPECT_EQ(unitsOf(vector->AtAsText(1)), u"1:02:03");
    EXPECT_EQ(vector->AtAsNumber(1).AsLong(), 10203);
    EXPECT_EQ(vector->AtAsDate(0).GetYear(), 2010);
    EXPECT_EQ(vector->AtAsTime(1).GetSec(), 3);
    EXPECT_EQ(vector->AtAsTimeStamp(0).GetDay(), 25);
    EXPECT_TRUE(vector->AtAsBoolean(1));
    EXPECT_FALSE(vector->AtAsBoolean(2));
    EXPECT_EQ(vector->AtAsBinaryData(0).GetCount(), 0);
    const std::unique_ptr<fmx::Data> last(vector->PopBack());
    vector->PushBack(vector->At(0)); // one of its own
    vector->Clear();
    EXPECT_EQ(vector->Size(), 0U);
    EXPECT_EQ(unitsOf(last->GetAsText()), u"0"); // it outlives the vector's own
}

TEST(WrapperDataVectTest, RefusesIndexesItDoesNotHave) {
    const fmx::DataVectUniquePtr vector;
    push(*vector, u"0");
    for (const fmx::uint32 index : {1U, 0xFFFFFFFFU}) {
        EXPECT_THROW(vector->At(index), std::exception);
        EXPECT_THROW(vector->AtAsText(index), std::exception);
        EXPECT_THROW(vector->AtAsNumber(index), std::exception);
        EXPECT_THROW(vector->AtAsDate(index), std::exception);
        EXPECT_THROW(vector->AtAsTime(index), std::exception);
        EXPECT_THROW(vector->AtAsTimeStamp(index), std::exception);
        EXPECT_THROW(vector->AtAsBoolean(index), std::exception);
        EXPECT_THROW(vector->AtAsBinaryData(index), std::exception);
    }
}

// What the program was asked.
struct Asked {
    std::u16string name;
    std::u16string prototype;
    std::u16string definition;
    std::u16string description;
    fmx::uint32 plugin = 0;
    fmx::int16 id = 0;
    fmx::int16 minArguments = 0;
    fmx::int16 maxArguments = 0;
    fmx::uint32 flags = 0;
    fmx::ExtPluginType function = nullptr;
};

fmx::errcode answer(short /*id*/, const fmx::ExprEnv& /*env*/, const fmx::DataVect& /*args*/,
                    fmx::Data& /*result*/) {
    return 0;
}

class WrapperExprEnvTest : public testing::Test {
  protected:
    WrapperExprEnvTest() {
        hooks_.context = &asked_;
        hooks_.registerFunction = [](void* context,
                                     const host::FunctionRegistration& wanted) -> fmx::errcode {
            Asked& asked = *static_cast<Asked*>(context);
            asked.name = unitsOf(wanted.name);
            asked.prototype = unitsOf(wanted.prototype);
            asked.description = wanted.description == nullptr ? u"(none)" : unitsOf(*wanted.description);
            asked.plugin = wanted.plugin.GetMacType();
            asked.id = wanted.id;
            asked.minArguments = wanted.minArguments;
            asked.maxArguments = wanted.maxArguments;
            asked.flags = wanted.flags;
            asked.function = wanted.function;
            return 11;
        };
        hooks_.unregisterFunction = [](void* context, const fmx::QuadChar& plugin,
                                       fmx::int16 id) -> fmx::errcode {
            static_cast<Asked*>(context)->plugin = plugin.GetMacType();
            static_cast<Asked*>(context)->id = id;
            return 12;
        };
        hooks_.registerScriptStep = [](void* context,
                                       const host::ScriptStepRegistration& wanted) -> fmx::errcode {
            Asked& asked = *static_cast<Asked*>(context);
            asked.name = unitsOf(wanted.name);
            asked.definition = unitsOf(wanted.definition);
            asked.description = unitsOf(wanted.description);
            asked.plugin = wanted.plugin.GetMacType();
            asked.id = wanted.id;
            asked.flags = wanted.flags;
            asked.function = wanted.function;
            return 13;
        };
        hooks_.unregisterScriptStep = [](void* context, const fmx::QuadChar& plugin,
                                         fmx::int16 id) -> fmx::errcode {
            static_cast<Asked*>(context)->plugin = plugin.GetMacType();
            static_cast<Asked*>(context)->id = id;
            return 14;
        };
        hooks_.evaluate = [](void* /*context*/, const fmx::ExprEnv& /*env*/, const fmx::Text& expression,
                             fmx::Data& result) -> fmx::errcode {
            if (unitsOf(expression) == u"out of memory") {
                throw std::bad_alloc();
            }
            if (unitsOf(expression) == u"throw") {
                throw 5; // NOLINT: not even a standard exception
            }
            return result.SetAsText(expression, result.GetLocale());
        };
        hooks_.sessionId = 0x100000001;
        hooks_.fileId = 0x200000002;
    }
    ~WrapperExprEnvTest() override { FM_Host_SetHooks(nullptr); }

    fmx::errcode registered() {
        return fmx::ExprEnv::RegisterExternalFunction(*id_, 7, *hostText(u"Name"), *hostText(u"Name ( x )"),
                                                      1, 2, fmx::ExprEnv::kDisplayInAllDialogs, answer);
    }

    Asked asked_;
    host::HostHooks hooks_;
    fmx::QuadCharUniquePtr id_{'T', 'E', 'S', 'T'};
    fmx::ExprEnvUniquePtr environment_;
    fmx::TextUniquePtr text_;
    DataUniquePtr result_;
};

TEST_F(WrapperExprEnvTest, RefusesWhenThereIsNoOneToAsk) {
    EXPECT_NE(registered(), 0);
    EXPECT_NE(fmx::ExprEnv::UnRegisterExternalFunction(*id_, 7), 0);
    EXPECT_NE(fmx::ExprEnv::UnRegisterScriptStep(*id_, 7), 0);
    EXPECT_NE(environment_->Evaluate(*hostText(u"1"), *result_), 0);
    EXPECT_TRUE(result_->IsEmpty());
    EXPECT_NE(environment_->EvaluateGetFunction(1002, *result_), 0);
    EXPECT_EQ(environment_->SessionID(), 0U);
}

TEST_F(WrapperExprEnvTest, AsksTheProgram) {
    FM_Host_SetHooks(&hooks_);
    EXPECT_EQ(registered(), 11);
    EXPECT_EQ(asked_.name, u"Name");
    EXPECT_EQ(asked_.prototype, u"Name ( x )");
    EXPECT_EQ(asked_.description, u"(none)");
    EXPECT_EQ(asked_.plugin, 0x54455354U);
    EXPECT_EQ(asked_.id, 7);
    EXPECT_EQ(asked_.minArguments, 1);
    EXPECT_EQ(asked_.maxArguments, 2);
    EXPECT_EQ(asked_.flags, 0xFF00U);
    EXPECT_EQ(asked_.function, &answer);
    EXPECT_EQ(fmx::ExprEnv::RegisterExternalFunctionEx(*id_, 8, *hostText(u"Other"), *hostText(u"Other"),
                                                       *hostText(u"What it does"), 3, -1,
                                                       fmx::ExprEnv::kAllDeviceCompatible, answer),
              11);
    EXPECT_EQ(asked_.name, u"Other");
    EXPECT_EQ(asked_.description, u"What it does");
    EXPECT_EQ(asked_.minArguments, 3);
    EXPECT_EQ(asked_.maxArguments, -1);
    EXPECT_EQ(asked_.flags, 126U);
    EXPECT_EQ(fmx::ExprEnv::UnRegisterExternalFunction(*id_, 9), 12);
    EXPECT_EQ(asked_.id, 9);
    EXPECT_EQ(environment_->Evaluate(*hostText(u"1 + 1"), *result_), 0);
    EXPECT_EQ(unitsOf(result_->GetAsText()), u"1 + 1");
    EXPECT_EQ(environment_->SessionID(), 0x100000001U);
    EXPECT_EQ(environment_->FileID(), 0x200000002U);
}

TEST_F(WrapperExprEnvTest, AsksTheProgramForScriptSteps) {
    FM_Host_SetHooks(&hooks_);
    EXPECT_EQ(fmx::ExprEnv::RegisterScriptStep(*id_, -5, *hostText(u"Step"), *hostText(u"<PluginStep/>"),
                                               *hostText(u"What it does"), 0xFF00, answer),
              13);
    EXPECT_EQ(asked_.name, u"Step");
    EXPECT_EQ(asked_.definition, u"<PluginStep/>");
    EXPECT_EQ(asked_.description, u"What it does");
    EXPECT_EQ(asked_.id, -5);
    EXPECT_EQ(asked_.flags, 0xFF00U);
    EXPECT_EQ(asked_.function, &answer);
    EXPECT_EQ(fmx::ExprEnv::UnRegisterScriptStep(*id_, -6), 14);
    EXPECT_EQ(asked_.id, -6);
}

TEST_F(WrapperExprEnvTest, StopsWhatTheProgramThrows) {
    FM_Host_SetHooks(&hooks_);
    EXPECT_THROW(environment_->Evaluate(*hostText(u"out of memory"), *result_), std::bad_alloc);
    EXPECT_THROW(environment_->Evaluate(*hostText(u"throw"), *result_), std::exception);
}

TEST_F(WrapperExprEnvTest, EvaluatesGetFunctionsByTheirNumbers) {
    FM_Host_SetHooks(&hooks_);
    const std::pair<fmx::int16, std::u16string_view> functions[] = {
        {1001, u"Get ( ApplicationVersion )"},
        {1002, u"Get ( CurrentDate )"},
        {1003, u"Get ( LastError )"},
        {1026, u"Get ( ScriptName )"},
        {1028, u"Get ( SystemVersion )"},
        {1029, u"Get ( CurrentTime )"},
        {1040, u"Get ( FilePath )"},
        {1062, u"Get ( ScriptParameter )"},
        {1063, u"Get ( CurrentTimestamp )"},
        {1080, u"Get ( ScriptResult )"},
        {1089, u"Get ( TemporaryPath )"},
        {1101, u"Get ( UUID )"},
        {1104, u"Get ( CurrentTimeUTCMilliseconds )"},
        {1133, u"Get ( CurrentTimeUTCMicroseconds )"},
    };
    for (const auto& [number, expression] : functions) {
        EXPECT_EQ(environment_->EvaluateGetFunction(number, *result_), 0);
        EXPECT_EQ(unitsOf(result_->GetAsText()), expression);
    }
    for (const fmx::int16 number : {0, -1, 1000, 32767}) {
        EXPECT_NE(environment_->EvaluateGetFunction(number, *result_), 0);
        EXPECT_FALSE(result_->IsValid());
    }
}

TEST_F(WrapperExprEnvTest, ConvertsPathsByTheFunctionsForThem) {
    EXPECT_NE(environment_->EvaluateConvertToFileMakerPath(*hostText(u"/a"), 1, *text_), 0);
    EXPECT_EQ(unitsOf(*text_), u"");
    FM_Host_SetHooks(&hooks_);
    EXPECT_EQ(environment_->EvaluateConvertToFileMakerPath(*hostText(u"C:\\a \"b\""), 2, *text_), 0);
    EXPECT_EQ(unitsOf(*text_), u"ConvertToFileMakerPath ( \"C:\\\\a \\\"b\\\"\" ; 2 )");
    EXPECT_EQ(environment_->EvaluateConvertFromFileMakerPath(*hostText(u"file:/a"), -3, *text_), 0);
    EXPECT_EQ(unitsOf(*text_), u"ConvertFromFileMakerPath ( \"file:/a\" ; -3 )");
    // A path that cannot be converted.
    hooks_.evaluate = [](void* /*context*/, const fmx::ExprEnv& /*env*/, const fmx::Text& /*expression*/,
                         fmx::Data& result) -> fmx::errcode {
        result.Clear(fmx::Data::kDTInvalid);
        return 0;
    };
    FM_Host_SetHooks(&hooks_);
    EXPECT_NE(environment_->EvaluateConvertFromFileMakerPath(*hostText(u"a"), 1, *text_), 0);
    EXPECT_EQ(unitsOf(*text_), u"");
}

TEST_F(WrapperExprEnvTest, FindsNoDatabase) {
    FM_Host_SetHooks(&hooks_);
    const fmx::DataVectUniquePtr parameters;
    const fmx::RowVectUniquePtr rows;
    EXPECT_NE(environment_->ExecuteFileSQL(*hostText(u"SELECT 1"), *hostText(u""), *parameters, *rows), 0);
    EXPECT_TRUE(rows->IsEmpty());
    EXPECT_EQ(rows->Size(), 0U);
    EXPECT_THROW(rows->At(0), std::exception);
    result_->SetAsText(*hostText(u"before"), result_->GetLocale());
    EXPECT_NE(environment_->ExecuteFileSQLTextResult(*hostText(u"SELECT 1"), *hostText(u""), *parameters,
                                                     *result_, u',', u'\n'),
              0);
    EXPECT_TRUE(result_->IsEmpty());
}

} // namespace
