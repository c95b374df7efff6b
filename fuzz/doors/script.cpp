// The text of a script: parsed, checked, formatted, and run.

#include "fuzz/support/claim.h"
#include "fuzz/support/confine.h"
#include "fuzz/support/formatting.h"
#include "fuzz/support/stop_after.h"
#include "host/calc/stack_limit.h"
#include "host/script/script_runner.h"
#include "host/values/text.h"
#include "tests/support/temporary_folder.h"

#include <cstdint>
#include <fstream>
#include <memory>

namespace {

using namespace host;

// The folder of the scripts. All that a step may write is in it, or where the fuzzer keeps what it finds.
const std::filesystem::path& folder() {
    static const support::TemporaryHome home;
    static const bool confined = fuzz::confineWrites({home.path(), std::filesystem::current_path()});
    fuzz::claim(confined, "the kernel can confine this program, which a script could have remove any file");
    return home.path();
}

// Runs a script in a folder of its own, where it may perform itself.
void run(std::string_view text) {
    for (const auto& left : std::filesystem::directory_iterator(folder())) { // by the input before
        std::filesystem::remove_all(left);
    }
    const auto file = folder() / "Input.fmscript";
    std::ofstream(file, std::ios::binary) << text;
    Session session;
    session.environment().folder = fromUtf8(folder().string());
    const StepRegistry steps;
    ScriptLibrary library(folder(), session.functions(), steps);
    ScriptListener listener;
    ScriptRunner runner(session, library, listener);
    const fuzz::StopAfter stop(session.interruptFlag(), std::chrono::milliseconds(250));
    try {
        (void)runner.run(file, Value::text(u"parameter")).asText();
    } catch (const CalcError& error) {
        (void)error.report();
    } catch (const FileError&) {
        return; // the text is no UTF-8
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    growStack();
    fuzz::formatAndCheck(text, FileKind::script);
    const FunctionRegistry functions;
    const StepRegistry steps;
    std::vector<CalcError> errors;
    const Script script =
        parseScript(std::make_shared<const Source>("input", fromUtf8(text)), functions, steps, errors);
    for (const CalcError& error : errors) {
        (void)error.report();
    }
    for (const Step& step : script.steps) {
        fuzz::claim(step.target <= script.steps.size() && step.begin <= step.end,
                    "a step jumps into its script");
    }
    if (errors.empty()) {
        run(text);
    }
    return 0;
}
