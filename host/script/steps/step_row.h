#pragma once

// A row of the tables of script steps.

#include <cstdint>
#include <string_view>

namespace host {

class StepContext;

// How a step is read and run.
enum class StepForm : uint8_t {
    run,    // a function runs it
    quiet,  // a function runs it, and it leaves Get ( LastError ) alone unless it says otherwise
    ifStep, // the parser works these out
    elseIf,
    elseStep,
    endIf,
    loop,
    exitLoopIf,
    endLoop,
    inert,       // does nothing where there is no window, and succeeds
    unavailable, // does nothing, error 3: what it talks to does not exist here
    refused,     // the parser refuses it: what it is for does not exist here
};

using StepFunction = void (*)(StepContext&);

struct StepRow {
    std::u16string_view prototype; // see prototypeParameters()
    std::string_view
        description; // one sentence; of a refused step what is missing here, and what to do instead
    StepForm form = StepForm::run;
    StepFunction run = nullptr;

    constexpr StepRow(std::u16string_view text, StepFunction function, std::string_view sentence,
                      StepForm quiet = StepForm::run)
        : prototype(text), description(sentence), form(quiet), run(function) {}
    constexpr StepRow(std::u16string_view text, StepForm special, std::string_view sentence)
        : prototype(text), description(sentence), form(special) {}
};

} // namespace host
