#include "host/console/calc_test.h"

#include "host/calc/parser.h"
#include "host/console/host.h"
#include "host/console/show.h"
#include "host/values/text.h"

#include <memory>
#include <optional>
#include <ostream>
#include <unicode/uregex.h>

namespace host {

namespace {

// True when [pattern] matches the whole of [text]; nothing when the pattern is none.
std::optional<bool> matches(const std::string& pattern, const std::string& text) {
    const std::u16string expression = fromUtf8(pattern);
    const std::u16string subject = fromUtf8(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, decltype(&uregex_close)> regex(
        uregex_open(expression.data(), static_cast<int32_t>(expression.size()), 0, nullptr, &status),
        uregex_close);
    uregex_setText(regex.get(), subject.data(), static_cast<int32_t>(subject.size()), &status);
    const bool found = uregex_matches(regex.get(), -1, &status) != 0;
    return U_SUCCESS(status) ? std::optional(found) : std::nullopt;
}

// What a calculation gave: a result, or an error.
struct Outcome {
    std::string text;
    bool isError;
};

Outcome evaluate(Session& session, const std::filesystem::path& file, const CalcCheck& check) {
    try {
        const auto source =
            std::make_shared<Source>(file.string(), fromUtf8(check.text), static_cast<uint32_t>(check.line));
        return {oneLine(session.evaluate(parseCalculation(source, session.functions()))), false};
    } catch (const CalcError& error) {
        return {error.what(), true};
    }
}

bool passes(const CalcCheck& check, const Outcome& outcome) {
    switch (check.kind) {
    case CheckKind::equals:
        return !outcome.isError && outcome.text == check.expected;
    case CheckKind::matches:
        return !outcome.isError && matches(check.expected, outcome.text).value_or(false);
    case CheckKind::fails:
        return outcome.isError && outcome.text.find(check.expected) != std::string::npos;
    }
    return false;
}

std::string expectation(const CalcCheck& check) {
    switch (check.kind) {
    case CheckKind::equals:
        return check.expected;
    case CheckKind::matches:
        return (matches(check.expected, "") ? "a match of " : "a match of this pattern, which is none: ") +
               check.expected;
    case CheckKind::fails:
        return "an error with \"" + check.expected + "\"";
    }
    return {};
}

} // namespace

CalcTestCount runCalcTest(Host& host, const std::filesystem::path& file, std::ostream& out) {
    const CalcTestFile test = parseCalcTest(toUtf8(readSource(file)->text()), file.extension() == ".md");
    CalcTestCount count;
    for (const CalcTestFault& fault : test.faults) {
        ++count.failed;
        out << file.string() << ':' << fault.line << ": " << fault.message << '\n';
    }
    for (const CalcCheck& check : test.checks) {
        const Outcome outcome = evaluate(host.session(), file, check);
        host.idle();
        if (passes(check, outcome)) {
            ++count.passed;
            continue;
        }
        ++count.failed;
        out << file.string() << ':' << check.line << ": " << check.text
            << "\n  expected: " << expectation(check) << "\n  got: " << (outcome.isError ? "the error: " : "")
            << outcome.text << '\n';
    }
    if (count.passed + count.failed == 0) {
        ++count.failed;
        out << file.string() << ": there are no checks in this file\n";
    }
    return count;
}

} // namespace host
