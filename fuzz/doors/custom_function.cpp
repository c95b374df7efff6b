// A file of custom functions: read, checked, formatted, and each function called with texts and numbers.

#include "fuzz/support/calculator.h"
#include "fuzz/support/formatting.h"
#include "fuzz/support/stop_after.h"
#include "host/calc/custom_functions.h"
#include "host/calc/evaluator.h"
#include "host/calc/stack_limit.h"
#include "host/values/text.h"

#include <cstdint>
#include <memory>

using namespace host;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    growStack();
    Session session;
    CustomFunctions functions;
    std::vector<CalcError> errors;
    functions.load({std::make_shared<const Source>("input.fmfn", fromUtf8(text))}, session.functions(),
                   errors);
    for (const CalcError& error : errors) {
        (void)error.report();
    }
    const fuzz::StopAfter stop(session.interruptFlag(), std::chrono::milliseconds(250));
    for (const auto& [name, function] : functions.all()) {
        for (const Value& argument : {Value::text(u"a¶B"), Value::number(Number(7))}) {
            try {
                fuzz::readAll(callFunction(session, *function,
                                           std::vector<Value>(function->parameters().size(), argument)));
            } catch (const CalcError& error) {
                (void)error.report();
            }
        }
    }
    fuzz::formatAndCheck(text, FileKind::customFunctions);
    return 0;
}
