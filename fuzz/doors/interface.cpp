// The plug-in interface: any calls in any order, on objects that calls make, change and delete, by a plug-in that gives
// the host no pointer to what is not there. The host behind it evaluates, and registers functions and steps.
//
// The input: a byte for a call, then its arguments.

#include "fuzz/support/claim.h"
#include "fuzz/support/interface_objects.h"
#include "fuzz/support/stop_after.h"
#include "host/calc/stack_limit.h"
#include "host/loader/plugin_host.h"

#include <algorithm>
#include <cstdint>

namespace {

using fuzz::function;
using fuzz::Interface;
using fuzz::make;
using fuzz::method;

// Texts and streams no longer than this, lists with no more values: an input that doubles them again and again finds
// nothing but the end of memory.
constexpr fmx::uint32 kMostUnits = 512;
constexpr fmx::uint32 kMostBytes = 4096;
constexpr fmx::uint32 kMostValues = 16;

// Deletes an object; another one takes its place.
template <class Class, auto kConstructor>
void remove(Interface& calls) {
    fmx::_fmxcpt failed;
    calls.slot<Class>().reset(kConstructor(failed));
}

// Returns characters that the input chooses, with a 0 behind them.
template <class Character>
std::vector<Character> characters(Interface& calls) {
    std::vector<Character> text(calls.input.number<uint8_t>() % 32);
    for (Character& each : text) {
        each = calls.input.number<Character>();
    }
    text.push_back(0);
    return text;
}

// Calls a method of a text that takes characters: up to a 0, or a number of them.
template <auto kFunction, class Character, class... Encoding>
void assign(Interface& calls) {
    const auto text = characters<Character>(calls);
    void* const self = calls.self<fmx::Text>();
    kFunction(self, text.data(), calls.argument<Encoding>()..., calls.argument<fmx::_fmxcpt&>());
}
template <auto kFunction, class Character, class... Encoding>
void assignWithLength(Interface& calls) {
    const auto text = characters<Character>(calls);
    void* const self = calls.self<fmx::Text>();
    kFunction(self, text.data(), static_cast<fmx::uint32>(text.size()), calls.argument<Encoding>()...,
              calls.argument<fmx::_fmxcpt&>());
}

template <auto kFunction>
void getBytes(Interface& calls) {
    std::vector<char> buffer(calls.input.number<uint8_t>());
    const void* const self = calls.self<fmx::Text>();
    const auto position = calls.argument<fmx::uint32>();
    const auto size = calls.argument<fmx::uint32>();
    (void)kFunction(self, buffer.data(), static_cast<fmx::uint32>(buffer.size()), position, size,
                    calls.argument<fmx::int32>(), calls.argument<fmx::_fmxcpt&>());
}

// The buffer is for what there is of the range.
void getUnicode(Interface& calls) {
    const auto& text = calls.readable<fmx::Text>();
    const auto position = calls.argument<fmx::uint32>();
    const auto size = calls.argument<fmx::uint32>();
    auto& block = calls.argument<fmx::_fmxcpt&>();
    const fmx::uint32 length = FM_Text_GetSize(&text, block);
    std::vector<fmx::uint16> buffer(std::min(size, length - std::min(position, length)));
    FM_Text_GetUnicode(&text, buffer.data(), position, size, block);
}

void readDateTime(Interface& calls) {
    const auto text = characters<fmx::uint16>(calls);
    const auto& locale = calls.readable<fmx::Locale>();
    auto& slot = calls.slot<fmx::DateTime>();
    if (auto* const made = FM_DateTime_Constructor2(text.data(), static_cast<fmx::uint32>(text.size() - 1),
                                                    locale, calls.argument<fmx::_fmxcpt&>())) {
        slot.reset(made);
    }
}

void makeFile(Interface& calls) {
    auto bytes = characters<char>(calls);
    const auto& name = calls.readable<fmx::Text>();
    auto& slot = calls.slot<fmx::BinaryData>();
    if (auto* const made = FM_BinaryData_Constructor3(name, static_cast<fmx::uint32>(bytes.size()),
                                                      bytes.data(), calls.argument<fmx::_fmxcpt&>())) {
        slot.reset(made);
    }
}

void beginFile(Interface& calls) {
    const auto& name = calls.readable<fmx::Text>();
    auto& slot = calls.slot<fmx::BinaryData>();
    calls.begun.push_back(0);
    if (auto* const made =
            FM_BinaryData_Constructor4(name, &calls.begun.back(), calls.argument<fmx::_fmxcpt&>())) {
        slot.reset(made);
    }
}

void getStream(Interface& calls) {
    std::vector<char> buffer(calls.input.number<uint8_t>());
    const void* const self = &calls.readable<fmx::BinaryData>();
    const auto index = calls.argument<fmx::int32>();
    const auto offset = calls.argument<fmx::uint32>();
    (void)FM_BinaryData_GetData(self, index, offset, static_cast<fmx::uint32>(buffer.size()), buffer.data(),
                                calls.argument<fmx::_fmxcpt&>());
}

void addStream(Interface& calls) {
    auto bytes = characters<char>(calls);
    void* const self = calls.self<fmx::BinaryData>();
    (void)FM_BinaryData_Add(self, calls.readable<fmx::QuadChar>(), static_cast<fmx::uint32>(bytes.size()),
                            bytes.data(), calls.argument<fmx::_fmxcpt&>());
}

void beginStream(Interface& calls) {
    void* const self = calls.self<fmx::BinaryData>();
    calls.begun.push_back(0);
    (void)FM_BinaryData_AddBegin(self, calls.readable<fmx::QuadChar>(), &calls.begun.back(),
                                 calls.argument<fmx::_fmxcpt&>());
}

void appendToStream(Interface& calls) {
    auto bytes = characters<char>(calls);
    void* const self = calls.self<fmx::BinaryData>();
    (void)FM_BinaryData_AddAppend(self, calls.stream(), static_cast<fmx::uint32>(bytes.size()), bytes.data(),
                                  calls.argument<fmx::_fmxcpt&>());
}

void finishStream(Interface& calls) {
    void* const self = calls.self<fmx::BinaryData>();
    (void)FM_BinaryData_AddFinish(self, calls.stream(), calls.argument<fmx::_fmxcpt&>());
}

void popBack(Interface& calls) {
    void* const self = calls.self<fmx::DataVect>();
    auto& slot = calls.slot<fmx::Data>();
    if (auto* const last = FM_DataVect_PopBack(self, calls.argument<fmx::_fmxcpt&>())) {
        slot.reset(last);
    }
}

// All functions of the interface; the methods Delete by way of the owners of the objects.
constexpr fuzz::InterfaceCall kCalls[] = {
    make<fmx::QuadChar, FM_QuadChar_Constructor1>,
    make<fmx::QuadChar, FM_QuadChar_Constructor2>,
    make<fmx::QuadChar, FM_QuadChar_Constructor3>,
    method<fmx::QuadChar, FM_QuadChar_operatorAS>,
    method<fmx::QuadChar, FM_QuadChar_operatorAR>,
    method<fmx::QuadChar, FM_QuadChar_operatorCAR>,
    method<fmx::QuadChar, FM_QuadChar_operatorEQ>,
    method<fmx::QuadChar, FM_QuadChar_operatorNE>,
    method<fmx::QuadChar, FM_QuadChar_operatorLT>,
    method<fmx::QuadChar, FM_QuadChar_operatorLE>,
    method<fmx::QuadChar, FM_QuadChar_operatorGT>,
    method<fmx::QuadChar, FM_QuadChar_operatorGE>,
    method<fmx::QuadChar, FM_QuadChar_GetMacType>,
    method<fmx::QuadChar, FM_QuadChar_SetMacType>,
    make<fmx::Locale, FM_Locale_Constructor1>,
    make<fmx::Locale, FM_Locale_Constructor2>,
    method<fmx::Locale, FM_Locale_operatorAS>,
    make<fmx::Text, FM_Text_Constructor1>,
    method<fmx::Text, FM_Text_GetSize>,
    method<fmx::Text, FM_Text_SetText>,
    method<fmx::Text, FM_Text_AppendText>,
    method<fmx::Text, FM_Text_InsertText>,
    method<fmx::Text, FM_Text_DeleteText>,
    method<fmx::Text, FM_Text_Find>,
    method<fmx::Text, FM_Text_FindPrev>,
    method<fmx::Text, FM_Text_FindIgnoringCase>,
    method<fmx::Text, FM_Text_FindPrevIgnoringCase>,
    method<fmx::Text, FM_Text_Uppercase>,
    method<fmx::Text, FM_Text_Lowercase>,
    method<fmx::Text, FM_Text_GetStyle>,
    method<fmx::Text, FM_Text_GetDefaultStyle>,
    method<fmx::Text, FM_Text_SetStyle>,
    method<fmx::Text, FM_Text_RemoveStyle>,
    method<fmx::Text, FM_Text_ResetAllStyleBuffers>,
    method<fmx::Text, FM_Text_operatorEQ>,
    method<fmx::Text, FM_Text_operatorNE>,
    method<fmx::Text, FM_Text_operatorLT>,
    method<fmx::Text, FM_Text_operatorLE>,
    method<fmx::Text, FM_Text_operatorGT>,
    method<fmx::Text, FM_Text_operatorGE>,
    make<fmx::Color, FM_Color_Constructor1>,
    make<fmx::Color, FM_Color_Constructor2>,
    make<fmx::Color, FM_Color_Constructor3>,
    method<fmx::Color, FM_Color_operatorAS>,
    method<fmx::Color, FM_Color_operatorEQ>,
    method<fmx::Color, FM_Color_operatorNE>,
    method<fmx::Color, FM_Color_GetRed>,
    method<fmx::Color, FM_Color_GetGreen>,
    method<fmx::Color, FM_Color_GetBlue>,
    method<fmx::Color, FM_Color_GetAlpha>,
    method<fmx::Color, FM_Color_GetRedUpsample>,
    method<fmx::Color, FM_Color_GetGreenUpsample>,
    method<fmx::Color, FM_Color_GetBlueUpsample>,
    method<fmx::Color, FM_Color_GetAlphaUpsample>,
    method<fmx::Color, FM_Color_SetRed>,
    method<fmx::Color, FM_Color_SetGreen>,
    method<fmx::Color, FM_Color_SetBlue>,
    method<fmx::Color, FM_Color_SetAlpha>,
    function<FM_Color_Black>,
    function<FM_Color_White>,
    make<fmx::CharacterStyle, FM_CharacterStyle_Constructor1>,
    make<fmx::CharacterStyle, FM_CharacterStyle_Constructor2>,
    make<fmx::CharacterStyle, FM_CharacterStyle_Constructor3>,
    method<fmx::CharacterStyle, FM_CharacterStyle_operatorAS>,
    method<fmx::CharacterStyle, FM_CharacterStyle_operatorEQ>,
    method<fmx::CharacterStyle, FM_CharacterStyle_operatorNE>,
    method<fmx::CharacterStyle, FM_CharacterStyle_GetFont>,
    method<fmx::CharacterStyle, FM_CharacterStyle_SetFont>,
    method<fmx::CharacterStyle, FM_CharacterStyle_EnableFont>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableFont>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsFontEnabled>,
    method<fmx::CharacterStyle, FM_CharacterStyle_GetFace>,
    method<fmx::CharacterStyle, FM_CharacterStyle_SetFace>,
    method<fmx::CharacterStyle, FM_CharacterStyle_EnableFace>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableFace>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableAllFaces>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsFaceEnabled>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsAnyFaceEnabled>,
    method<fmx::CharacterStyle, FM_CharacterStyle_GetSize>,
    method<fmx::CharacterStyle, FM_CharacterStyle_SetSize>,
    method<fmx::CharacterStyle, FM_CharacterStyle_EnableSize>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableSize>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsSizeEnabled>,
    method<fmx::CharacterStyle, FM_CharacterStyle_GetColor>,
    method<fmx::CharacterStyle, FM_CharacterStyle_SetColor>,
    method<fmx::CharacterStyle, FM_CharacterStyle_EnableColor>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableColor>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsColorEnabled>,
    method<fmx::CharacterStyle, FM_CharacterStyle_GetFontInformation>,
    method<fmx::CharacterStyle, FM_CharacterStyle_SetFontInformation>,
    method<fmx::CharacterStyle, FM_CharacterStyle_DisableAll>,
    method<fmx::CharacterStyle, FM_CharacterStyle_IsAllDisabled>,
    make<fmx::FixPt, FM_FixPt_Constructor1>,
    make<fmx::FixPt, FM_FixPt_Constructor2>,
    method<fmx::FixPt, FM_FixPt_AssignInt>,
    method<fmx::FixPt, FM_FixPt_AssignInt64>,
    method<fmx::FixPt, FM_FixPt_AssignDouble>,
    method<fmx::FixPt, FM_FixPt_AssignFixPt>,
    method<fmx::FixPt, FM_FixPt_operatorEQ>,
    method<fmx::FixPt, FM_FixPt_operatorNE>,
    method<fmx::FixPt, FM_FixPt_operatorLT>,
    method<fmx::FixPt, FM_FixPt_operatorLE>,
    method<fmx::FixPt, FM_FixPt_operatorGT>,
    method<fmx::FixPt, FM_FixPt_operatorGE>,
    method<fmx::FixPt, FM_FixPt_Increment>,
    method<fmx::FixPt, FM_FixPt_Increment64>,
    method<fmx::FixPt, FM_FixPt_Decrement>,
    method<fmx::FixPt, FM_FixPt_Decrement64>,
    method<fmx::FixPt, FM_FixPt_Negate>,
    method<fmx::FixPt, FM_FixPt_GetPrecision>,
    method<fmx::FixPt, FM_FixPt_SetPrecision>,
    method<fmx::FixPt, FM_FixPt_Add>,
    method<fmx::FixPt, FM_FixPt_Subtract>,
    method<fmx::FixPt, FM_FixPt_Multiply>,
    method<fmx::FixPt, FM_FixPt_Divide>,
    method<fmx::FixPt, FM_FixPt_AsBool>,
    method<fmx::FixPt, FM_FixPt_AsLong>,
    method<fmx::FixPt, FM_FixPt_AsLong64>,
    method<fmx::FixPt, FM_FixPt_AsFloat>,
    make<fmx::DateTime, FM_DateTime_Constructor1>,
    make<fmx::DateTime, FM_DateTime_Constructor3>,
    method<fmx::DateTime, FM_DateTime_operatorEQ>,
    method<fmx::DateTime, FM_DateTime_operatorNE>,
    method<fmx::DateTime, FM_DateTime_IsLeapYear>,
    method<fmx::DateTime, FM_DateTime_DayOfWeek>,
    method<fmx::DateTime, FM_DateTime_DayOfYear>,
    method<fmx::DateTime, FM_DateTime_WeekOfYear>,
    method<fmx::DateTime, FM_DateTime_Now>,
    method<fmx::DateTime, FM_DateTime_SetDate>,
    method<fmx::DateTime, FM_DateTime_SetNormalizedDate1>,
    method<fmx::DateTime, FM_DateTime_SetNormalizedDate2>,
    method<fmx::DateTime, FM_DateTime_SetDaysSinceEpoch>,
    method<fmx::DateTime, FM_DateTime_SetTime>,
    method<fmx::DateTime, FM_DateTime_SetNormalizedTime1>,
    method<fmx::DateTime, FM_DateTime_SetNormalizedTime2>,
    method<fmx::DateTime, FM_DateTime_SetSecsSinceMidnight>,
    method<fmx::DateTime, FM_DateTime_SetSecondsSinceEpoch>,
    method<fmx::DateTime, FM_DateTime_GetYear>,
    method<fmx::DateTime, FM_DateTime_GetMonth>,
    method<fmx::DateTime, FM_DateTime_GetDay>,
    method<fmx::DateTime, FM_DateTime_GetDaysSinceEpoch>,
    method<fmx::DateTime, FM_DateTime_GetHour>,
    method<fmx::DateTime, FM_DateTime_GetMinute>,
    method<fmx::DateTime, FM_DateTime_GetSec>,
    method<fmx::DateTime, FM_DateTime_GetUSec>,
    method<fmx::DateTime, FM_DateTime_GetSeconds>,
    method<fmx::DateTime, FM_DateTime_GetSecsSinceMidnight>,
    method<fmx::DateTime, FM_DateTime_GetSecondsSinceEpoch>,
    make<fmx::BinaryData, FM_BinaryData_Constructor1>,
    make<fmx::BinaryData, FM_BinaryData_Constructor2>,
    method<fmx::BinaryData, FM_BinaryData_operatorAS>,
    method<fmx::BinaryData, FM_BinaryData_operatorEQ>,
    method<fmx::BinaryData, FM_BinaryData_operatorNE>,
    method<fmx::BinaryData, FM_BinaryData_GetCount>,
    method<fmx::BinaryData, FM_BinaryData_GetIndex>,
    method<fmx::BinaryData, FM_BinaryData_GetTotalSize>,
    method<fmx::BinaryData, FM_BinaryData_GetType>,
    method<fmx::BinaryData, FM_BinaryData_GetSize>,
    method<fmx::BinaryData, FM_BinaryData_AddFinish>,
    method<fmx::BinaryData, FM_BinaryData_Remove>,
    method<fmx::BinaryData, FM_BinaryData_RemoveAll>,
    method<fmx::BinaryData, FM_BinaryData_GetFNAMData>,
    method<fmx::BinaryData, FM_BinaryData_AddFNAMData>,
    method<fmx::BinaryData, FM_BinaryData_GetSIZEData>,
    method<fmx::BinaryData, FM_BinaryData_AddSIZEData>,
    make<fmx::Data, FM_Data_Constructor1>,
    method<fmx::Data, FM_Data_IsEmpty>,
    method<fmx::Data, FM_Data_IsValid>,
    method<fmx::Data, FM_Data_IsFindRequest>,
    method<fmx::Data, FM_Data_Clear>,
    method<fmx::Data, FM_Data_GetAsText>,
    method<fmx::Data, FM_Data_GetAsNumber>,
    method<fmx::Data, FM_Data_GetAsDate>,
    method<fmx::Data, FM_Data_GetAsTime>,
    method<fmx::Data, FM_Data_GetAsTimeStamp>,
    method<fmx::Data, FM_Data_GetAsBoolean>,
    method<fmx::Data, FM_Data_GetBinaryData>,
    method<fmx::Data, FM_Data_GetLocale>,
    method<fmx::Data, FM_Data_GetNativeType>,
    method<fmx::Data, FM_Data_ConvertData>,
    method<fmx::Data, FM_Data_SetAsText>,
    method<fmx::Data, FM_Data_SetAsNumber>,
    method<fmx::Data, FM_Data_SetAsDate>,
    method<fmx::Data, FM_Data_SetAsTime>,
    method<fmx::Data, FM_Data_SetAsTimeStamp>,
    method<fmx::Data, FM_Data_SetDateTime>,
    method<fmx::Data, FM_Data_SetBinaryData>,
    method<fmx::Data, FM_Data_GetFontID>,
    method<fmx::Data, FM_Data_GetFontInfo>,
    method<fmx::Data, FM_Data_GetPostscriptFontID>,
    method<fmx::Data, FM_Data_GetPostscriptFontInfo>,
    make<fmx::DataVect, FM_DataVect_Constructor1>,
    method<fmx::DataVect, FM_DataVect_Size>,
    method<fmx::DataVect, FM_DataVect_Clear>,
    method<fmx::DataVect, FM_DataVect_IsEmpty>,
    method<fmx::DataVect, FM_DataVect_PushBack>,
    method<fmx::DataVect, FM_DataVect_At>,
    method<fmx::DataVect, FM_DataVect_AtAsText>,
    method<fmx::DataVect, FM_DataVect_AtAsNumber>,
    method<fmx::DataVect, FM_DataVect_AtAsDate>,
    method<fmx::DataVect, FM_DataVect_AtAsTime>,
    method<fmx::DataVect, FM_DataVect_AtAsTimeStamp>,
    method<fmx::DataVect, FM_DataVect_AtAsBoolean>,
    method<fmx::DataVect, FM_DataVect_AtAsBinaryData>,
    make<fmx::RowVect, FM_RowVect_Constructor1>,
    method<fmx::RowVect, FM_RowVect_Size>,
    method<fmx::RowVect, FM_RowVect_IsEmpty>,
    method<fmx::RowVect, FM_RowVect_At>,
    make<fmx::ExprEnv, FM_ExprEnv_Constructor1>,
    method<fmx::ExprEnv, FM_ExprEnv_Evaluate>,
    method<fmx::ExprEnv, FM_ExprEnv_EvaluateGetFunction>,
    method<fmx::ExprEnv, FM_ExprEnv_EvaluateConvertToFileMakerPath>,
    method<fmx::ExprEnv, FM_ExprEnv_EvaluateConvertFromFileMakerPath>,
    method<fmx::ExprEnv, FM_ExprEnv_ExecuteFileSQL>,
    method<fmx::ExprEnv, FM_ExprEnv_ExecuteFileSQLTextResult>,
    method<fmx::ExprEnv, FM_ExprEnv_SessionID>,
    method<fmx::ExprEnv, FM_ExprEnv_FileID>,
    function<FM_ExprEnv_RegisterExternalFunction>,
    function<FM_ExprEnv_RegisterExternalFunctionEx>,
    function<FM_ExprEnv_UnRegisterExternalFunction>,
    function<FM_ExprEnv_RegisterScriptStep>,
    function<FM_ExprEnv_UnRegisterScriptStep>,
    assign<FM_Text_Assign, char, fmx::int32>,
    assign<FM_Text_AssignWide, wchar_t>,
    assign<FM_Text_AssignUnicode, fmx::uint16>,
    assignWithLength<FM_Text_AssignWithLength, char, fmx::int32>,
    assignWithLength<FM_Text_AssignWideWithLength, wchar_t>,
    assignWithLength<FM_Text_AssignUnicodeWithLength, fmx::uint16>,
    getBytes<FM_Text_GetBytes>,
    getBytes<FM_Text_GetBytesEx>,
    getUnicode,
    readDateTime,
    makeFile,
    beginFile,
    getStream,
    addStream,
    beginStream,
    appendToStream,
    finishStream,
    popBack,
    remove<fmx::BinaryData, FM_BinaryData_Constructor1>,
    remove<fmx::Data, FM_Data_Constructor1>,
    remove<fmx::DataVect, FM_DataVect_Constructor1>,
    remove<fmx::RowVect, FM_RowVect_Constructor1>,
    remove<fmx::Text, FM_Text_Constructor1>,
};
static_assert(std::size(kCalls) <= 256, "a byte says which call");

// Cuts what has grown.
void cut(Interface& calls) {
    fmx::_fmxcpt block;
    for (auto& text : calls.slots<fmx::Text>()) {
        if (FM_Text_GetSize(text.get(), block) > kMostUnits) {
            FM_Text_DeleteText(text.get(), kMostUnits, fmx::Text::kSize_End, block);
        }
    }
    for (auto& data : calls.slots<fmx::Data>()) {
        if (FM_Data_GetNativeType(data.get(), block) == fmx::Data::kDTText &&
            FM_Text_GetSize(&FM_Data_GetAsText(data.get(), block), block) > kMostUnits) {
            FM_Data_Clear(data.get(), fmx::Data::kDTText, block);
        }
    }
    for (auto& streams : calls.slots<fmx::BinaryData>()) {
        if (FM_BinaryData_GetTotalSize(streams.get(), block) > kMostBytes) {
            FM_BinaryData_RemoveAll(streams.get(), block);
        }
    }
    for (auto& values : calls.slots<fmx::DataVect>()) {
        if (FM_DataVect_Size(values.get(), block) > kMostValues) {
            FM_DataVect_Clear(values.get(), block);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    host::growStack();
    fuzz::Input input(data, size);
    host::Session session;
    host::StepRegistry steps;
    host::PluginHost host(session, steps, [](const auto&, const auto&, const auto&) { return 0; });
    const fuzz::StopAfter stop(session.interruptFlag(), std::chrono::milliseconds(250));
    Interface calls(input);
    while (!input.ended()) {
        kCalls[input.number<uint8_t>() % std::size(kCalls)](calls);
        fuzz::claim(calls.block.code >= 0 && calls.block.code <= 2,
                    "a call succeeds, or fails with code 1 or 2");
        cut(calls);
    }
    (void)host.functions();
    (void)host.steps();
    return 0;
}
