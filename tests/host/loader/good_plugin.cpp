// A well-behaved plug-in, with functions that show what they get, and functions that misbehave when asked to.
#include "tests/host/loader/test_plugin.h"

#include <chrono>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace test_plugin;
using fmx::Data;
using fmx::DataVect;
using fmx::errcode;
using fmx::ExprEnv;

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace {

int idles = 0;
int lastIdleLevel = -1;
int calls = 0;
int starts = 0;
int shutDowns = 0;
errcode unknownUnregistration = 0;

enum Function : short {
    kEcho,
    kJoin,
    kCount,
    kThrow,
    kEvaluate,
    kStartScript,
    kIdle,
    kEmpty,
    kType,
    kVanish,
    kInstance,
    kNested,
    kAnswer,
    kStartLater,
    kStartWhenIdle,
    kPicture,
    kStreams,
    kStyle,
    kEmbolden
};

std::vector<std::thread> threads; // that start scripts; ended by the shut-down
std::string scriptForIdle;

errcode echo(short, const ExprEnv&, const DataVect& in, Data& result) {
    const Data& value = in.At(0);
    if (value.IsEmpty()) {
        result.Clear(value.GetNativeType());
        return 0;
    }
    switch (value.GetNativeType()) {
    case Data::kDTNumber:
        result.SetAsNumber(value.GetAsNumber());
        return 0;
    case Data::kDTDate:
        result.SetAsDate(value.GetAsDate());
        return 0;
    case Data::kDTTime:
        result.SetAsTime(value.GetAsTime());
        return 0;
    case Data::kDTTimeStamp:
        result.SetAsTimeStamp(value.GetAsTimeStamp());
        return 0;
    case Data::kDTBinary:
        result.SetBinaryData(value.GetBinaryData(), true);
        return 0;
    default:
        setText(result, value.GetAsText());
        return 0;
    }
}

errcode join(short, const ExprEnv&, const DataVect& in, Data& result) {
    const fmx::TextUniquePtr text;
    for (fmx::uint32 i = 0; i < in.Size(); ++i) {
        text->AppendText(in.AtAsText(i));
    }
    setText(result, *text);
    return 0;
}

errcode count(short, const ExprEnv&, const DataVect&, Data& result) {
    setNumber(result, ++calls);
    return 0;
}

errcode misbehave(short, const ExprEnv&, const DataVect& in, Data&) {
    char how[32] = "";
    in.AtAsText(0).GetBytes(how, sizeof how);
    const std::string what = how;
    if (what == "runtime") {
        throw std::runtime_error("the printer is on fire");
    }
    if (what == "alloc") {
        throw std::bad_alloc();
    }
    if (what == "int") {
        throw 42; // NOLINT(hicpp-exception-baseclass): what this is about
    }
    if (what == "abort") {
        std::abort();
    }
    in.At(99); // the host throws
    return 0;
}

errcode evaluate(short, const ExprEnv& environment, const DataVect& in, Data& result) {
    FMX_SetToCurrentEnv(const_cast<ExprEnv*>(&environment));
    const errcode code = environment.Evaluate(in.AtAsText(0), result);
    if (code != 0) {
        setNumber(result, code);
    }
    return 0;
}

// Without arguments it asks for nothing at all.
errcode startScript(short, const ExprEnv&, const DataVect& in, Data& result) {
    if (in.IsEmpty()) {
        setNumber(result, FMX_StartScript(nullptr, nullptr, kFMXT_Pause, nullptr));
        return 0;
    }
    const fmx::int32 control = in.Size() > 3 ? in.AtAsNumber(3).AsLong() : fmx::int32{kFMXT_Pause};
    setNumber(result, FMX_StartScript(&in.AtAsText(0), &in.AtAsText(1), static_cast<fmx::uchar>(control),
                                      in.Size() > 2 ? &in.At(2) : nullptr));
    return 0;
}

std::string bytesOf(const fmx::Text& text) {
    char bytes[64] = "";
    text.GetBytes(bytes, sizeof bytes);
    return bytes;
}

void startNamed(const std::string& name) {
    const fmx::TextUniquePtr file;
    const fmx::TextUniquePtr script;
    assign(*script, name.c_str());
    FMX_StartScript(&*file, &*script, kFMXT_Pause, nullptr);
}

// Starts a script on another thread after some milliseconds.
errcode startLater(short, const ExprEnv&, const DataVect& in, Data& result) {
    const std::chrono::milliseconds delay(in.AtAsNumber(1).AsLong());
    threads.emplace_back([script = bytesOf(in.AtAsText(0)), delay] {
        std::this_thread::sleep_for(delay);
        startNamed(script);
    });
    setNumber(result, 0);
    return 0;
}

// The next idle message starts the script.
errcode startWhenIdle(short, const ExprEnv&, const DataVect& in, Data& result) {
    scriptForIdle = bytesOf(in.AtAsText(0));
    setNumber(result, 0);
    return 0;
}

void idleMessage(int level) {
    ++idles;
    lastIdleLevel = level;
    if (!scriptForIdle.empty()) {
        startNamed(std::exchange(scriptForIdle, {}));
    }
}

void add(fmx::BinaryData& container, const char* type, const void* bytes, size_t size) {
    const fmx::QuadCharUniquePtr code(type[0], type[1], type[2], type[3]);
    container.Add(*code, static_cast<fmx::uint32>(size), const_cast<void*>(bytes));
}

// A picture without a name: several streams that all hold the same 2 by 3 pixels in BMP, whatever their code
// says, and a size that is wrong.
errcode picture(short, const ExprEnv&, const DataVect&, Data& result) {
    unsigned char bytes[54 + 3 * 8] = {
        'B', 'M', sizeof bytes, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0,
        1,   0,   24,           0};
    const fmx::BinaryDataUniquePtr container;
    container->AddSIZEData(9, 9);
    for (const char* type : {"GIFf", "BMPf", "PNGf"}) {
        add(*container, type, bytes, sizeof bytes);
    }
    result.SetBinaryData(*container, true);
    return 0;
}

// The streams of a container as the plug-in sees them: "FNAM 10 SIZE 4 PNGf 312 20x10".
errcode streams(short, const ExprEnv&, const DataVect& in, Data& result) {
    const fmx::BinaryData& container = in.AtAsBinaryData(0);
    const fmx::QuadCharUniquePtr type;
    std::string text;
    for (fmx::int32 i = 0; i < container.GetCount(); ++i) {
        container.GetType(i, *type);
        for (fmx::uint32 c = 0; c < 4; ++c) {
            text += (*type)[c];
        }
        text += " " + std::to_string(container.GetSize(i)) + " ";
    }
    short width = 0;
    short height = 0;
    if (container.GetSIZEData(width, height) == 0) {
        text += std::to_string(width) + "x" + std::to_string(height);
    }
    const fmx::TextUniquePtr answer;
    assign(*answer, text.c_str());
    setText(result, *answer);
    return 0;
}

// The style of the text's character at a position from 0: "font size faces red green blue".
errcode style(short, const ExprEnv& environment, const DataVect& in, Data& result) {
    const fmx::CharacterStyleUniquePtr found;
    in.AtAsText(0).GetStyle(*found, static_cast<fmx::uint32>(in.AtAsNumber(1).AsLong()));
    const fmx::TextUniquePtr text;
    fmx::FontScript script = 0;
    in.At(0).GetFontInfo(found->GetFont(), *text, script, environment);
    const fmx::Color& color = found->GetColor();
    std::string rest;
    for (const int number : {int{found->GetSize()}, int{found->GetFace()}, int{color.GetRed()},
                             int{color.GetGreen()}, int{color.GetBlue()}}) {
        rest += " " + std::to_string(number);
    }
    const fmx::TextUniquePtr numbers;
    assign(*numbers, rest.c_str());
    text->AppendText(*numbers);
    setText(result, *text);
    return 0;
}

// Returns the text with bold and red first characters, as many as the second argument says.
errcode embolden(short, const ExprEnv&, const DataVect& in, Data& result) {
    const fmx::TextUniquePtr text;
    text->SetText(in.AtAsText(0));
    const fmx::CharacterStyleUniquePtr bold;
    const fmx::ColorUniquePtr red(255, 0, 0);
    bold->EnableFace(fmx::CharacterStyle::kFace_Bold);
    bold->SetColor(*red);
    text->SetStyle(*bold, 0, static_cast<fmx::uint32>(in.AtAsNumber(1).AsLong()));
    setText(result, *text);
    return 0;
}

errcode idle(short, const ExprEnv&, const DataVect&, Data& result) {
    setNumber(result, idles * 10 + lastIdleLevel);
    return 0;
}

errcode empty(short, const ExprEnv&, const DataVect&, Data&) {
    return 0;
}

errcode type(short, const ExprEnv&, const DataVect& in, Data& result) {
    setNumber(result, in.At(0).GetNativeType());
    return 0;
}

// Unregisters a function while a calculation that calls it is running.
errcode vanish(short, const ExprEnv&, const DataVect& in, Data& result) {
    setNumber(result, unregisterFunction(static_cast<short>(in.AtAsNumber(0).AsLong())));
    return 0;
}

// Returns what start-up gave: the version, and whether there is an instance handle.
errcode instance(short, const ExprEnv&, const DataVect&, Data& result) {
    setNumber(result, (gFMX_ExternCallPtr->instanceID != 0 ? 1 : 0) + (unknownUnregistration != 0 ? 100 : 0) +
                          gFMX_ExternCallPtr->extnVersion * 1000);
    return 0;
}

// Its own arguments must survive what the evaluation does with others.
errcode nested(short, const ExprEnv& environment, const DataVect& in, Data& result) {
    const errcode code = environment.Evaluate(in.AtAsText(1), result);
    const fmx::TextUniquePtr text;
    text->SetText(in.AtAsText(0));
    text->AppendText(result.GetAsText());
    setText(result, *text);
    return code;
}

errcode answer(short, const ExprEnv&, const DataVect& in, Data& result) {
    setNumber(result, 1);
    return static_cast<errcode>(in.AtAsNumber(0).AsLong());
}

void start() {
    ++starts;
    registerFunction(kEcho, "Test_Echo", "Test_Echo ( value )", 1, 1, echo);
    registerFunction(kJoin, "Test_Join ", "Test_Join ( value ... )", 0, -1, join);
    registerFunction(kCount, "Test_Count", "Test_Count ( a ; b {; c } )", 2, 3, count);
    registerFunction(kThrow, "Test_Throw", "Test_Throw ( how )", 1, 1, misbehave);
    registerFunction(kEvaluate, "Test_Evaluate", "Test_Evaluate ( calculation )", 1, 1, evaluate);
    registerFunction(kStartScript, "Test_StartScript",
                     "Test_StartScript ( file ; script {; parameter ; control } )", 0, 4, startScript);
    registerFunction(kIdle, "Test_Idle", "Test_Idle", 0, 0, idle);
    registerFunction(kEmpty, "Test_Empty", "Test_Empty {( value )}", 0, 1, empty);
    registerFunction(kType, "Test_Type", "Test_Type ( value )", 1, 1, type);
    registerFunction(kVanish, "Test_Vanish", "Test_Vanish ( id )", 1, 1, vanish);
    registerFunction(kInstance, "Test_Instance", "Test_Instance", 0, 0, instance);
    registerFunction(kNested, "Test_Nested", "Test_Nested ( text ; calculation )", 2, 2, nested);
    registerFunction(kAnswer, "Test_Answer", "Test_Answer ( code )", 1, 1, answer);
    registerFunction(kStartLater, "Test_StartLater", "Test_StartLater ( script ; milliseconds )", 2, 2,
                     startLater);
    registerFunction(kStartWhenIdle, "Test_StartWhenIdle", "Test_StartWhenIdle ( script )", 1, 1,
                     startWhenIdle);
    registerFunction(kPicture, "Test_Picture", "Test_Picture", 0, 0, picture);
    registerFunction(kStreams, "Test_Streams", "Test_Streams ( container )", 1, 1, streams);
    registerFunction(kStyle, "Test_Style", "Test_Style ( text ; position )", 2, 2, style);
    registerFunction(kEmbolden, "Test_Embolden", "Test_Embolden ( text ; characters )", 2, 2, embolden);
    unknownUnregistration = unregisterFunction(999);
}

} // namespace

// For the test, which looks it up by dlsym.
TEST_PLUGIN_EXPORT int testShutDowns() {
    return shutDowns;
}
TEST_PLUGIN_EXPORT int testStarts() {
    return starts;
}

TEST_PLUGIN_EXPORT void FMExternCallProc(FMX_ExternCallPtr call) {
    if (call->whichCall == kFMXT_Init) { // later threads of the plug-in read it
        gFMX_ExternCallPtr = call;
    }
    switch (call->whichCall) {
    case kFMXT_Init:
        start();
        call->result = k130ExtnVersion;
        break;
    case kFMXT_Idle:
        idleMessage(call->parm1);
        break;
    case kFMXT_Shutdown:
        ++shutDowns;
        for (std::thread& thread : threads) {
            thread.join();
        }
        threads.clear();
        unregisterFunction(kEcho);
        break;
    case kFMXT_GetString:
        answerString(call, call->parm1 == kFMXT_NameStr      ? "Test plug-in"
                           : call->parm1 == kFMXT_OptionsStr ? "TEST1nnYYnn"
                           : call->parm1 == kFMXT_HelpURLStr ? "https://example.com/help"
                                                             : "Helps testing.");
        break;
    default:
        break;
    }
}
