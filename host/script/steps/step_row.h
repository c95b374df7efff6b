#pragma once

// The rows of the tables of script steps.

#include <cstdint>
#include <string_view>

namespace host {

class StepContext;

// How a step is parsed and run.
enum class StepForm : uint8_t {
    run,    // runs a function, and sets Get ( LastError )
    quiet,  // runs a function; Get ( LastError ) stays as it is unless the function sets it
    ifStep, // this and the following: control structures, which the parser makes jumps
    elseIf,
    elseStep,
    endIf,
    loop,
    exitLoopIf,
    endLoop,
    inert,       // does nothing and succeeds, as there is no window
    unavailable, // does nothing and gives error 3, as what it needs does not exist in this host
    refused,     // the parser refuses it, as what it is for does not exist in this host
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
