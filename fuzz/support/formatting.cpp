#include "fuzz/support/formatting.h"

#include "fuzz/support/claim.h"
#include "host/calc/calc_error.h"
#include "host/calc/registry.h"
#include "host/editor/format.h"
#include "host/script/step_parameter.h"
#include "host/values/text.h"

#include <memory>

namespace fuzz {

namespace {

size_t problemsIn(const host::SourcePtr& text, host::FileKind kind) {
    const host::FunctionRegistry functions;
    const host::StepRegistry steps;
    return check(text, kind, {functions, steps}).size();
}

// Returns what formatting keeps: all but blanks, letter case, and commas in place of semicolons.
std::u16string letters(std::u16string_view text) {
    std::u16string kept;
    for (const char16_t unit : host::foldName(text)) {
        if (unit > u' ' && !host::isSpace(unit)) {
            kept += unit == u',' ? u';' : unit;
        }
    }
    return kept;
}

} // namespace

void formatAndCheck(std::string_view text, host::FileKind kind) {
    const auto source = std::make_shared<const host::Source>("input", host::fromUtf8(text));
    const size_t problems = problemsIn(source, kind);
    try {
        const host::FormatStyle style;
        const auto once = std::make_shared<const host::Source>("input", formatFile(source, kind, style));
        claim(letters(once->text()) == letters(source->text()), "formatting loses nothing");
        claim(formatFile(once, kind, style) == once->text(), "formatting twice is the same as once");
        claim((problemsIn(once, kind) == 0) == (problems == 0),
              "formatting leaves right what is right, and wrong what is wrong");
    } catch (const host::CalcError& error) {
        (void)error.report();
    }
}

} // namespace fuzz
